'use strict';

// Draws the switch after a step, and the way of a frame through it.

class Drawing {
   constructor( node ) {
      this.node = node;
      this.width = 0;
      new ResizeObserver( () => this.resized() ).observe( node );
   }

   resized() {
      if ( this.shown && Math.abs( this.node.clientWidth - this.width ) > 1 ) {
         this.show( this.shown );
      }
   }

   // what: { step: its index, frame: or null, place: the name of one or null, found: names or null }
   show( what ) {
      this.shown = what;
      this.width = this.node.clientWidth;
      const layout = layoutOf( what.step, Math.max( this.width - 2, 330 ), wantedNames( what ) );
      this.layout = layout;
      this.what = what;
      const image = svg( 'svg', { width: layout.width, height: layout.height, role: 'group',
                                  viewBox: '0 0 ' + layout.width + ' ' + layout.height } );
      image.append( this.fabric(), ...this.lanes(), ...layout.units.map( unit => this.unit( unit ) ),
                    ...layout.ends.map( end => this.end( end ) ) );
      if ( what.frame ) {
         image.append( framePath( layout, what.frame ) );
      }
      image.append( ...layout.ports.map( port => this.port( port ) ),
                    ...layout.vteps.map( vtep => this.vtep( vtep ) ), ...this.more() );
      this.node.replaceChildren( image );
      if ( run.steps[ what.step ].tables.ports === undefined ) {
         this.node.prepend( el( 'p', { class: 'quiet' },
                                'The ports, segments and VTEPs of this moment were not told.' ) );
      }
   }

   classOf( name, kind ) {
      const { place, frame, found } = this.what;
      const isOn = place === name || ( frame && namesOfFrame( frame ).has( name ) );
      const isKept = frame && frame.fate.keptBack.some( copy => ( copy.vtep || copy.interface ) === name );
      return kind + ( isKept ? ' back' : isOn ? ' on' : '' ) + ( found && !found.has( name ) ? ' off' : '' );
   }

   link( name, kind, title, ...children ) {
      return svg( 'a', { href: hrefs.place( name ), class: this.classOf( name, kind ),
                         'data-place': name },
                  svg( 'title', {}, title ), ...children );
   }

   fabric() {
      const { columns, vteps, ports } = this.layout;
      const left = ports.filter( port => port.side === 'left' );
      const ys = [ ...vteps, ...left ].map( one => one.y );
      const x = columns.fabric;
      const line = ( x1, y1, x2, y2 ) => svg( 'line', { x1, y1, x2, y2 } );
      return svg( 'g', { class: 'wires' },
                  ys.length && line( x, Math.min( ...ys ), x, Math.max( ...ys ) ),
                  vteps.map( vtep => line( vtep.x + vtep.width, vtep.y, x, vtep.y ) ),
                  left.map( port => line( x, port.y, port.x, port.y ) ) );
   }

   // A line for each segment, from its interface around the drawing to the VTEPs that share it.
   lanes() {
      const { segments, ends, vteps, columns, inner, width } = this.layout;
      return segments.slice( 0, kMostLanes ).flatMap( ( segment, lane ) => {
         const end = ends.find( one => one.name === segment.segment );
         const shared = vteps.filter( vtep => segment.vtep.includes( vtep.vtep ) );
         if ( !end || shared.length === 0 ) {
            return [];
         }
         const right = width - 3 - 5 * lane;
         const left = columns.pad - 6 - 5 * lane;
         const low = inner + 4 + 5 * lane;
         const top = Math.min( ...shared.map( vtep => vtep.y ) );
         const path = 'M' + ( end.x + end.width ) + ' ' + end.y + 'H' + right + 'V' + low + 'H' + left +
                      'V' + top + shared.map( vtep => 'M' + left + ' ' + vtep.y + 'H' + vtep.x ).join( '' );
         const related = [ segment.segment, ...shared.map( vtep => vtep.vtep ) ];
         const isOn = related.includes( this.what.place );
         return [ svg( 'path', { d: path, class: 'lane seg-' + lane % kMostLanes + ( isOn ? ' on' : '' ) } ) ];
      } );
   }

   unit( unit ) {
      const bar = unit.width - 24;
      const narrow = unit.width < 200;
      return svg( 'g', { class: 'unit' },
                  svg( 'rect', { x: unit.x, y: unit.y, width: unit.width, height: unit.height, rx: 6 } ),
                  svg( 'text', { x: unit.x + 12, y: unit.y + 16, class: 'strong' }, 'unit ' + unit.number ),
                  unit.gauges.map( ( row, n ) => {
                     const y = unit.y + 26 + 17 * n;
                     const used = row.plugin + row.others;
                     const share = value => Math.max( value ? 2 : 0, bar * value / row.capacity );
                     return svg( 'g', { class: 'gauge' + ( row.free === 0 ? ' full' : '' ) },
                                 svg( 'title', {}, row.group + ': ' + row.plugin + ' of the plug-in, ' +
                                      row.others + ' of others, ' + row.capacity + ' in all' ),
                                 svg( 'rect', { x: unit.x + 12, y: y + 10, width: bar, height: 3, class: 'room' } ),
                                 svg( 'rect', { x: unit.x + 12, y: y + 10, width: share( used ), height: 3, class: 'others' } ),
                                 svg( 'rect', { x: unit.x + 12, y: y + 10, width: share( row.plugin ), height: 3, class: 'own' } ),
                                 svg( 'text', { x: unit.x + 12, y: y + 7, class: 'small' },
                                      narrow ? row.group.replace( ' group', '' ) : row.group ),
                                 svg( 'text', { x: unit.x + unit.width - 12, y: y + 7, class: 'small end' },
                                      used + '/' + row.capacity ) );
                  } ) );
   }

   port( port ) {
      const isLeft = port.side === 'left';
      const valid = port.port !== 'not valid';
      const label = labelOf( this.layout, port );
      const title = port.interface + ', unit ' + port.unit + ' port ' + port.port +
                    ( port.keepsBackFrom ? '; keeps back from ' + port.keepsBackFrom.join( ', ' ) : '' );
      return this.link( port.interface, 'port' + ( valid ? '' : ' dead' ), title,
                        svg( 'rect', { x: port.x - 11, y: port.y - 8, width: 22, height: 16, rx: 3 } ),
                        svg( 'text', { x: port.x, y: port.y + 4, class: 'small mid' }, valid ? port.port : '–' ),
                        svg( 'text', { x: port.x + ( isLeft ? 16 : -16 ), y: port.y + 4,
                                       class: isLeft ? 'small over' : 'small over end' }, label ) );
   }

   end( end ) {
      const lane = this.layout.segments.findIndex( segment => segment.segment === end.segment );
      const wires = end.ports.map( port => svg( 'line', { x1: port.x + 11, y1: port.y, x2: end.x, y2: end.y,
                                                          class: 'wire' } ) );
      if ( !end.isPortChannel && end.segment === null ) {
         return svg( 'g', { class: 'host' }, wires,
                     svg( 'circle', { cx: end.x, cy: end.y, r: 3.5 } ),
                     svg( 'text', { x: end.x + 10, y: end.y + 4, class: 'small quiet' }, 'hosts' ) );
      }
      const shared = lane < 0 ? [] : this.layout.segments[ lane ].vtep;
      const most = Math.floor( ( end.width - 16 ) / 6.3 );
      const title = end.name + ( end.segment === null ? '' : ', Ethernet segment shared with ' +
                                                             ( shared.join( ', ' ) || 'nobody' ) );
      return svg( 'g', {}, wires, this.link(
         end.name, 'interface' + ( lane < 0 ? '' : ' segment seg-' + lane % kMostLanes ), title,
         svg( 'rect', { x: end.x, y: end.y - end.height / 2, width: end.width, height: end.height, rx: 4 } ),
         svg( 'text', { x: end.x + 8, y: end.y + ( end.segment === null ? 4 : -3 ) },
              shortenedName( end.name, most ) ),
         end.segment !== null && svg( 'text', { x: end.x + 8, y: end.y + 11, class: 'small quiet' },
                                      end.width > 130 ? 'segment with ' + counted( shared.length, 'VTEP' )
                                                      : 'ES, ' + counted( shared.length, 'VTEP' ) ) ) );
   }

   vtep( vtep ) {
      const isGuarded = vtep.protection === 'protected';
      const isOpen = vtep.protection.startsWith( 'none' );
      const most = Math.floor( ( vtep.width - 23 ) / 7.3 );
      return this.link( vtep.vtep, 'vtep' + ( isOpen ? ' open' : isGuarded ? ' guarded' : '' ),
                        'VTEP ' + vtep.vtep + ': ' + vtep.protection,
                        svg( 'rect', { x: vtep.x, y: vtep.y - 9, width: vtep.width, height: 18, rx: 9 } ),
                        svg( 'circle', { cx: vtep.x + 11, cy: vtep.y, r: 3 } ),
                        svg( 'text', { x: vtep.x + 18, y: vtep.y + 4, class: 'code' },
                             shortened( vtep.vtep, most ) ) );
   }

   more() {
      const { moreVteps, morePorts, vteps, columns, inner } = this.layout;
      const note = ( x, text ) => svg( 'text', { x, y: inner - 2, class: 'small quiet' }, text );
      return [ moreVteps > 0 && note( vteps[ 0 ].x, '+ ' + counted( moreVteps, 'VTEP' ) ),
               morePorts > 0 && note( columns.device.x + 8, '+ ' + counted( morePorts, 'port' ) ) ]
         .filter( one => one );
   }
}

// The name beside a port, inside the switch.
function labelOf( layout, port ) {
   const most = Math.floor( ( layout.columns.device.width / 2 - 24 ) / 6 );
   return shortenedName( port.interface, Math.max( most, 6 ) );
}

// "Ethernet49" as "Et49" where there is no room.
function shortenedName( name, most ) {
   const abbreviated = name.replace( /^Ethernet/, 'Et' ).replace( /^Port-Channel/, 'Po' );
   return name.length <= most ? name : shortened( abbreviated, most );
}

function namesOfFrame( frame ) {
   const copies = frame.fate.copies.filter( copy => copy.verdict !== 'arrival' );
   return new Set( [ frame.vtep || frame.arrival, ...copies.map( copy => copy.vtep || copy.interface ) ] );
}

function wantedNames( what ) {
   const names = new Set( what.frame ? namesOfFrame( what.frame ) : [] );
   if ( what.frame ) {
      names.add( what.frame.arrival );
   }
   return what.place ? names.add( what.place ) : names;
}

// --- The way of a frame

function framePath( layout, frame ) {
   const arrival = portAt( layout, frame.unit, frame.port );
   const group = svg( 'g', { class: 'path' } );
   if ( !arrival ) {
      return group;
   }
   const middle = layout.columns.device.x + layout.columns.device.width / 2;
   group.append( svg( 'path', { class: 'in', d: wayIn( layout, frame, arrival, middle ) } ) );
   if ( frame.fate.dropReason ) {
      group.append( stopMark( middle, arrival.y, 'dropped: ' + frame.fate.dropReason ) );
      return group;
   }
   const ways = frame.fate.copies.filter( one => one.verdict !== 'arrival' )
                   .flatMap( copy => wayOut( layout, copy, arrival, middle ) );
   const isMark = part => part.classList.contains( 'stop-mark' );
   group.append( ...ways.filter( part => !isMark( part ) ), ...ways.filter( isMark ),
                 svg( 'circle', { class: 'hub', cx: middle, cy: arrival.y, r: 4 } ) );
   return group;
}

function portAt( layout, unit, port ) {
   return layout.ports.find( one => one.unit === unit && one.port === port );
}

function wayIn( layout, frame, port, middle ) {
   const vtep = layout.vteps.find( one => one.vtep === frame.vtep );
   const x = layout.columns.fabric;
   if ( vtep ) {
      return 'M' + ( vtep.x + vtep.width ) + ' ' + vtep.y + 'H' + x + 'V' + port.y + 'H' + middle;
   }
   const end = endOf( layout, port );
   const start = end ? end.x + ' ' + end.y + 'L' + ( port.x + 11 ) + ' ' + port.y
                     : ( port.side === 'left' ? x : port.x + 30 ) + ' ' + port.y;
   return 'M' + start + 'H' + middle;
}

function endOf( layout, port ) {
   return layout.ends.find( end => end.ports.includes( port ) );
}

function wayOut( layout, copy, arrival, middle ) {
   const port = copy.port === null ? null : portAt( layout, copy.unit, copy.port );
   if ( !port ) {
      return [];
   }
   const isSent = copy.verdict === 'sent';
   const edge = port.side === 'left' ? port.x + 11 : port.x - 11;
   const bend = ( middle + edge ) / 2;
   const bent = 'C' + bend + ' ' + arrival.y + ' ' + bend + ' ' + port.y + ' ' + edge + ' ' + port.y;
   let way = 'M' + middle + ' ' + arrival.y + bent;
   if ( !isSent ) {
      const inward = port.side === 'left' ? 1 : -1;
      const beside = edge + inward * ( 16 + 6 * labelOf( layout, port ).length );
      return [ svg( 'path', { class: 'kept', d: way, 'data-copy': goalOf( copy ) } ),
               stopMark( beside, port.y, goalOf( copy ) + ': ' + reasonOf( copy ) ) ];
   }
   const vtep = layout.vteps.find( one => one.vtep === copy.vtep );
   const end = endOf( layout, port );
   if ( vtep ) {
      way += 'H' + layout.columns.fabric + 'V' + vtep.y + 'H' + ( vtep.x + vtep.width + 5 );
   } else if ( end ) {
      way += 'L' + ( port.x + 11 ) + ' ' + port.y + 'L' + ( end.x - 4 ) + ' ' + end.y;
   }
   const tip = vtep ? arrow( vtep.x + vtep.width, vtep.y, -1 ) : end ? arrow( end.x, end.y, 1 ) : null;
   return [ svg( 'path', { class: 'sent', d: way, 'data-copy': goalOf( copy ) } ), tip ].filter( one => one );
}

// An arrow's head at the point, to the right (1) or to the left (-1).
function arrow( x, y, way ) {
   return svg( 'path', { class: 'tip', d: 'M' + x + ' ' + y + 'l' + -7 * way + ' -4v8z' } );
}

function stopMark( x, y, title ) {
   return svg( 'g', { class: 'stop-mark' }, svg( 'title', {}, title ),
               svg( 'circle', { cx: x, cy: y, r: 6 } ),
               svg( 'path', { d: 'M' + ( x - 2.5 ) + ' ' + ( y - 2.5 ) + 'l5 5m0 -5l-5 5' } ) );
}
