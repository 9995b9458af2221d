'use strict';

// Where the parts of the drawing stand, from left to right:
//
//    VTEPs | the fabric between them and the switch | the switch with its units and ports | the
//    port channels and other interfaces behind the ports, with their segments
//
// A switch with very many VTEPs or ports shows the first of them, the ones with segments before the
// others, and always those of `wanted`, a set of names, as far as there is any sense in that.

const kRow = 24;          // between two rows
const kMostVteps = 14;
const kMostPorts = 16;
const kMostWanted = 48;
const kMostLanes = 5;     // segments whose VTEPs are joined by lines of their own

function layoutOf( stepIndex, width, wanted ) {
   const vteps = chosenRows( run.table( 'vteps', stepIndex ), kMostVteps,
                             row => row.segment.length > 0, row => wanted.has( row.vtep ) );
   const ports = chosenRows( run.table( 'ports', stepIndex ), kMostPorts,
                             row => row.segment !== null || isUnderlay( row ),
                             row => wanted.has( row.interface ) || wanted.has( row.portChannel ) );
   const segments = run.table( 'segments', stepIndex );
   const columns = columnsOf( width, Math.min( segments.length, kMostLanes ) );
   const layout = { width, columns, segments, vteps: [], units: [], ports: [], ends: [],
                    moreVteps: vteps.more, morePorts: ports.more };
   placeUnits( layout, ports.rows, run.table( 'tcam', stepIndex ) );
   placeVteps( layout, vteps.rows );
   placeEnds( layout );
   layout.inner = Math.max( layout.bottom, ...layout.vteps.map( vtep => vtep.y + kRow ),
                            ...layout.ends.map( end => end.y + end.height / 2 + 8 ) );
   layout.height = layout.inner + 10 + 5 * Math.min( segments.length, kMostLanes );
   return layout;
}

function isUnderlay( row ) {
   return run.underlay.has( row.interface ) || run.underlay.has( row.portChannel );
}

// At most that many rows: those that are wanted, then the preferred ones, then the others, in their
// own order.
function chosenRows( rows, most, isPreferred, isWanted ) {
   const room = Math.max( most, Math.min( kMostWanted, rows.filter( isWanted ).length ) );
   if ( rows.length <= room ) {
      return { rows, more: 0 };
   }
   const rank = row => isWanted( row ) ? 0 : isPreferred( row ) ? 1 : 2;
   const kept = new Set( rows.map( ( row, n ) => ( { row, n } ) )
                            .sort( ( a, b ) => rank( a.row ) - rank( b.row ) || a.n - b.n )
                            .slice( 0, room ).map( one => one.row ) );
   return { rows: rows.filter( row => kept.has( row ) ), more: rows.length - room };
}

// The left edges and widths of the columns.
function columnsOf( width, lanes ) {
   const pad = 6 + 5 * lanes;
   const share = ( part, least, most ) => Math.min( most, Math.max( least, width * part ) );
   const vtep = share( 0.2, 84, 190 );
   const device = share( 0.36, 118, 420 );
   const end = share( 0.2, 92, 200 );
   const gaps = Math.max( 30, width - 2 * pad - vtep - device - end );
   const left = pad + vtep + gaps * 0.55;
   return { pad, vtep: { x: pad, width: vtep },
            fabric: pad + vtep + gaps * 0.275,
            device: { x: left, width: device },
            end: { x: left + device + gaps * 0.45, width: end } };
}

function placeUnits( layout, rows, groups ) {
   const { device } = layout.columns;
   let y = 8;
   for ( const unit of run.units ) {
      const own = rows.filter( row => row.unit === unit.number );
      const left = own.filter( isUnderlay );
      const right = inOrderOfEnds( own.filter( row => !isUnderlay( row ) ) );
      const gauges = groups.filter( row => row.unit === unit.number );
      const top = y + 22 + 17 * gauges.length + 6;
      const place = ( row, n, side ) => layout.ports.push( {
         ...row, side, x: side === 'left' ? device.x : device.x + device.width,
         y: top + n * kRow + kRow / 2 } );
      left.forEach( ( row, n ) => place( row, n, 'left' ) );
      right.forEach( ( row, n ) => place( row, n, 'right' ) );
      const height = top - y + Math.max( left.length, right.length, 1 ) * kRow + 4;
      layout.units.push( { ...unit, x: device.x, y, width: device.width, height, gauges } );
      y += height + 12;
   }
   layout.bottom = y;
}

// The members of a port channel next to each other.
function inOrderOfEnds( rows ) {
   const order = [ ...new Set( rows.map( row => row.portChannel || row.interface ) ) ];
   return rows.slice().sort( ( a, b ) => order.indexOf( a.portChannel || a.interface ) -
                                         order.indexOf( b.portChannel || b.interface ) );
}

function placeVteps( layout, rows ) {
   const { vtep } = layout.columns;
   const free = layout.bottom - 12 - rows.length * kRow;
   const top = Math.max( 8, free / 2 );
   layout.vteps = rows.map( ( row, n ) => ( { ...row, x: vtep.x, width: vtep.width,
                                              y: top + n * kRow + kRow / 2 } ) );
}

// An end for each interface or port channel on the right, beside its ports.
function placeEnds( layout ) {
   const ends = new Map();
   for ( const port of layout.ports.filter( one => one.side === 'right' ) ) {
      const name = port.portChannel || port.interface;
      if ( !ends.has( name ) ) {
         ends.set( name, { name, isPortChannel: port.portChannel !== null, segment: port.segment,
                           ports: [] } );
      }
      ends.get( name ).ports.push( port );
   }
   for ( const end of ends.values() ) {
      end.middle = end.ports.reduce( ( sum, port ) => sum + port.y, 0 ) / end.ports.length;
   }
   let bottom = 0;
   for ( const end of [ ...ends.values() ].sort( ( a, b ) => a.middle - b.middle ) ) {
      const height = end.segment === null ? 20 : 34;
      const y = Math.max( end.middle, bottom + height / 2 + 4 );
      bottom = y + height / 2;
      layout.ends.push( { ...end, x: layout.columns.end.x, y, height,
                          width: layout.columns.end.width } );
   }
}
