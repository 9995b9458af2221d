'use strict';

// The steps, and above them the use of the TCAM groups from step to step.

class TimeLine {
   constructor( choose ) {
      this.list = new VirtualList( byId( 'steps' ), {
         render: index => this.row( run.steps[ index ] ),
         choose
      } );
      this.found = null;
      this.list.itemsAre( run.steps.map( step => step.index ) );
      this.groups = usedGroups();
      new ResizeObserver( () => this.drawTcam() ).observe( byId( 'tcam' ) );
   }

   // found: the indices of the steps that the search has found, or null
   show( index, found ) {
      this.index = index;
      this.found = found;
      this.drawTcam();  // first, since it takes height from the list
      this.list.chosenIs( index );
   }

   row( step ) {
      const isLast = step.index === run.steps.length - 1;
      const stop = run.end.stop;
      const marks = marksOf( step ).filter( mark => mark );
      if ( isLast && stop ) {
         marks.unshift( el( 'span', { class: stop.asExpected ? 'mark good' : 'mark bad' },
                            stop.asExpected ? 'stopped, as expected' : 'STOPPED' ) );
      }
      return el( 'div', { class: ( this.found && !this.found.has( step.index ) ? 'off ' : '' ) +
                                ( isLast && stop && !stop.asExpected ? 'bad' : '' ) },
                 el( 'span', { class: 'number' }, step.number === null ? '–' : step.number ),
                 el( 'span', { class: 'what', title: step.text },
                     el( 'span', { class: marks.length ? 'text' : 'text long' },
                         step.number === null || !step.place ? step.name : step.text ),
                     marks.length > 0 && el( 'span', { class: 'marks' }, marks ) ) );
   }

   drawTcam() {
      const node = byId( 'tcam' );
      const width = node.clientWidth - 24;  // without its padding
      if ( width <= 0 ) {
         return;
      }
      node.replaceChildren( ...this.groups.slice( 0, 6 ).map( group => this.chart( group, width ) ) );
      if ( this.groups.length > 6 ) {
         node.append( el( 'p', { class: 'quiet' }, counted( this.groups.length - 6, 'more group' ) +
                                                   ' in the details of a step' ) );
      }
   }

   chart( group, width ) {
      const height = 30;
      const points = group.points;
      const x = index => 2 + ( width - 4 ) * index / Math.max( 1, run.steps.length - 1 );
      const most = Math.max( ...points.map( point => point.plugin + point.others ) );
      const scale = Math.min( group.capacity, Math.max( 8, 2 * most ) );  // little use is seen as well
      const y = used => height - 3 - ( height - 8 ) * used / scale;
      const line = value => points.map( point => 'H' + x( point.index ).toFixed( 1 ) + 'V' +
                                                 y( value( point ) ).toFixed( 1 ) ).join( '' );
      const area = value => 'M' + x( points[ 0 ].index ) + ' ' + ( height - 3 ) + line( value ) +
                            'H' + ( width - 2 ) + 'V' + ( height - 3 ) + 'Z';
      const last = points[ points.length - 1 ];
      const now = points.filter( point => point.index <= this.index ).pop() || points[ 0 ];
      const refused = points.filter( ( point, n ) => n > 0 && point.refused > points[ n - 1 ].refused );
      const image = svg(
         'svg', { width, height, class: 'chart' },
         svg( 'path', { d: area( point => point.plugin + point.others ), class: 'others' } ),
         svg( 'path', { d: area( point => point.plugin ), class: 'own' } ),
         scale === group.capacity &&
            svg( 'line', { x1: 2, x2: width - 2, y1: y( scale ), y2: y( scale ), class: 'capacity' } ),
         refused.map( point => svg( 'circle', { cx: x( point.index ), cy: y( scale ), r: 3, class: 'refused' },
                                    svg( 'title', {}, 'a request found no room' ) ) ),
         run.end.stop && svg( 'line', { x1: width - 2, x2: width - 2, y1: 2, y2: height - 2, class: 'stopped' } ),
         svg( 'line', { x1: x( this.index ), x2: x( this.index ), y1: 2, y2: height - 2, class: 'now' } ) );
      return el( 'figure', {},
                 el( 'figcaption', {}, el( 'span', {}, ( run.units.length > 1 ? 'unit ' + group.unit + ', ' : '' ) +
                                                       group.group ),
                     el( 'span', { class: 'quiet' }, ( now.plugin + now.others ) + ' of ' + group.capacity +
                                                     ( last.refused ? ', ' + last.refused + ' refused' : '' ) ) ),
                 image );
   }
}

// The groups that held an entry at any time, with their use after each step that tells it.
function usedGroups() {
   const groups = new Map();
   run.steps.forEach( ( step, index ) => {
      for ( const row of run.table( 'tcam', index ) ) {
         const name = row.unit + ' ' + row.group;
         if ( !groups.has( name ) ) {
            groups.set( name, { unit: row.unit, group: row.group, capacity: row.capacity, points: [] } );
         }
         groups.get( name ).points.push( { index, plugin: row.plugin, others: row.others, refused: row.refused } );
      }
   } );
   return [ ...groups.values() ].filter(
      group => group.points.some( point => point.plugin + point.others + point.refused > 0 ) );
}

function marksOf( step ) {
   const rules = what => step.rules.filter( change => change.what === what ).length;
   const texts = kind => step.lines.filter( line => line.kind === kind ).map( line => line.text ).join( '\n' );
   const lines = kind => step.lines.filter( line => line.kind === kind ).length;
   const mark = ( count, text, kind, thing, title ) =>
      count > 0 && el( 'span', { class: 'mark ' + kind, title: title || counted( count, thing ) }, text );
   return [
      mark( lines( 'failed' ), '✕ ' + lines( 'failed' ), 'bad', 'expectation that did not hold' ),
      mark( lines( 'held' ), '✓ ' + lines( 'held' ), 'good', 'expectation that held' ),
      mark( rules( 'added' ), '+' + rules( 'added' ), 'good', 'rule added' ),
      mark( rules( 'changed' ), '~' + rules( 'changed' ), 'changed', 'rule changed' ),
      mark( rules( 'removed' ), '−' + rules( 'removed' ), 'removed', 'rule removed' ),
      mark( step.changes.length, counted( step.changes.length, 'change' ), '', 'change of the state' ),
      mark( step.frames, counted( step.frames, 'frame' ), '', 'frame' ),
      mark( lines( 'logged' ), counted( lines( 'logged' ), 'log line' ), 'changed', '', texts( 'logged' ) ),
      mark( lines( 'warning' ), counted( lines( 'warning' ), 'warning' ), 'bad', '', texts( 'warning' ) )
   ];
}
