'use strict';

// Texts and links that several parts of the page share.

function placeOfRule( rule ) {
   return 'unit ' + rule.unit + ' entry ' + rule.entry;
}

function goalOf( copy ) {
   return copy.vtep ? 'VTEP ' + copy.vtep : copy.interface;
}

function reasonOf( copy ) {
   return copy.rule !== null ? copy.verdict + ' by ' + placeOfRule( run.rules[ copy.rule ] )
                             : copy.verdict;
}

// The fate of a frame in one line.
function fateText( fate ) {
   if ( fate.dropReason ) {
      return 'dropped: ' + fate.dropReason;
   }
   const parts = [];
   if ( fate.sent.length ) {
      parts.push( 'sent to ' + fate.sent.map( goalOf ).join( ', ' ) );
   }
   for ( const copy of fate.keptBack ) {
      parts.push( goalOf( copy ) + ' ' + reasonOf( copy ) );
   }
   return parts.join( '; ' ) || 'leaves nowhere';
}

function nameOfStep( number ) {
   const step = run.steps[ indexOfStep( number ) ];
   return step ? step.name : 'the beginning';
}

// --- Links; app.js follows them

const hrefs = {
   step: index => '#/step/' + index,
   frame: number => '#/frame/' + number,
   rule: number => '#/rule/' + number,
   place: name => '#/place/' + encodeURIComponent( name )
};

function stepLink( number ) {
   return el( 'a', { href: hrefs.step( indexOfStep( number ) ) }, nameOfStep( number ) );
}

function ruleLink( number, text ) {
   return el( 'a', { href: hrefs.rule( number ) }, text || placeOfRule( run.rules[ number ] ) );
}

function placeLink( name, text ) {
   return el( 'a', { href: hrefs.place( name ) }, text || name );
}

// The names of all VTEPs, interfaces and port channels that the switch has had.
const placeNames = namesOfPlaces();

function namesOfPlaces() {
   const names = new Set();
   run.steps.forEach( ( step, index ) => {
      run.table( 'ports', index ).forEach( row => names.add( row.interface ).add( row.portChannel ) );
      run.table( 'segments', index ).forEach( row => names.add( row.segment ) );
      run.table( 'vteps', index ).forEach( row => names.add( row.vtep ) );
   } );
   names.delete( null );
   return names;
}

const placePattern = placeNames.size === 0 ? null : new RegExp(
   '(?<![\\w.:-])(' +
   [ ...placeNames ].sort( ( a, b ) => b.length - a.length )
      .map( name => name.replace( /[.*+?^${}()|[\]\\]/g, '\\$&' ) ).join( '|' ) +
   ')(?![\\w]|[.:-]\\w|::)', 'g' );

// The text with a link in place of each name of a place.
function linked( text ) {
   if ( !placePattern ) {
      return [ text ];
   }
   const parts = [];
   let end = 0;
   for ( const match of text.matchAll( placePattern ) ) {
      parts.push( text.slice( end, match.index ), placeLink( match[ 0 ] ) );
      end = match.index + match[ 0 ].length;
   }
   parts.push( text.slice( end ) );
   return parts;
}

// --- Frames by rule

const framesByRule = countFramesByRule();

// For each rule, how many listed frames it decided: it won the lookup, or kept a copy back.
function countFramesByRule() {
   const counts = new Array( run.rules.length ).fill( 0 );
   for ( let number = 1; number <= run.listed; ++number ) {
      for ( const rule of run.frame( number ).fate.rules ) {
         ++counts[ rule ];
      }
   }
   return counts;
}
