'use strict';

// Puts the parts together. The address behind # names the thing in view, so the browser's back button
// and its bookmarks work: #/step/10, #/frame/136, #/rule/2, #/place/Ethernet1.

const lists = [ framesList, rulesList, messagesList, changesList ];

const state = {
   step: startStep(),
   frame: null,  // its number
   rule: null,   // its number
   place: null,  // its name
   list: run.listed > 0 ? framesList : rulesList,
   filters: new Set(),  // by name
   onlyRule: null,      // the rule whose frames alone are listed
   onlyStep: false,
   words: []
};

// The stop, the first expectation that failed, or the last step of the scenario.
function startStep() {
   const failed = run.steps.find( step => step.lines.some( line => line.kind === 'failed' ) );
   const last = run.steps.length - 1;
   const isTornDown = run.steps[ last ].name === 'teardown';
   return failed ? failed.index : Math.max( 0, isTornDown ? last - 1 : last );
}

const drawing = new Drawing( byId( 'drawing' ) );
const timeLine = new TimeLine( index => go( hrefs.step( index ) ) );
const list = new VirtualList( byId( 'list' ), {
   render: item => state.list.row( item, state ),
   choose: item => go( state.list.href( item ), item )
} );

// --- Where to

let chosenItem = null;  // of the list in view

// A new entry of the history for each kind of thing, not for each row that an arrow key passes.
function go( href, item = null ) {
   chosenItem = item;
   const isSameKind = location.hash.split( '/' )[ 1 ] === href.split( '/' )[ 1 ];
   history[ isSameKind ? 'replaceState' : 'pushState' ]( null, '', href );
   follow();
}

function follow() {
   const [ , kind, ...rest ] = location.hash.split( '/' );
   const name = decodeURIComponent( rest.join( '/' ) );
   const number = Number( name );
   Object.assign( state, { frame: null, rule: null, place: null } );
   if ( kind === 'frame' && number >= 1 && number <= run.listed ) {
      state.frame = number;
      state.step = indexOfStep( run.frame( number ).step );
      state.list = framesList;
   } else if ( kind === 'rule' && run.rules[ number ] ) {
      state.rule = number;
      state.list = rulesList;
   } else if ( kind === 'place' && name ) {
      state.place = name;
   } else if ( kind === 'step' && run.steps[ number ] ) {
      state.step = number;
   }
   show();
   if ( matchMedia( '(max-width: 700px)' ).matches && ( state.frame !== null || state.place !== null ) ) {
      byId( 'drawing-panel' ).scrollIntoView();  // above the details
   }
}

function showDetails() {
   const node = byId( 'details' );
   const content = state.frame !== null ? frameDetails( run.frame( state.frame ) )
                   : state.rule !== null ? ruleDetails( run.rules[ state.rule ] )
                   : state.place !== null ? placeDetails( state.place, state.step )
                   : location.hash === '' ? runDetails()
                                          : stepDetails( run.steps[ state.step ] );
   node.replaceChildren( el( 'button', { type: 'button', class: 'close', 'aria-label': 'Close the details',
                                         onclick: () => node.classList.remove( 'up' ) }, '✕' ) );
   node.append( ...content.flat( Infinity ).filter( one => one ) );
   node.scrollTop = 0;
   node.classList.toggle( 'up', location.hash !== '' );
}

function show() {
   const places = foundPlaces( state.words );
   const frame = state.frame === null ? null : run.frame( state.frame );
   drawing.show( { step: state.step, frame, place: state.place, found: places } );
   byId( 'drawing-title' ).textContent = ( frame ? 'The way of frame ' + frame.number : 'The switch' ) + ' after ' +
                                         run.steps[ state.step ].name;
   if ( frame ) {
      byId( 'drawing-title' ).textContent = 'Frame ' + frame.number + ' in ' + run.steps[ state.step ].name;
   }
   timeLine.show( state.step, foundSteps( state.words ) );
   showTabs();
   showList();
   showDetails();
}

// --- Lists

function itemsOf( one ) {
   const chosen = one.filters( state ).filter( filter => state.filters.has( one.name + ' ' + filter.name ) );
   let items = one.all().filter( item => chosen.every( filter => filter.has( item ) ) );
   if ( one === framesList && state.onlyRule !== null ) {
      items = items.filter( number => run.frame( number ).fate.rules.has( state.onlyRule ) );
   }
   if ( state.onlyStep ) {
      items = items.filter( item => isOfStep( one, item ) );
   }
   return found( one, items, state.words );
}

function isOfStep( one, item ) {
   const number = run.steps[ state.step ].number;
   return one === framesList ? run.frame( item ).step === number
          : one === rulesList ? run.steps[ state.step ].rules.some( change => change.rule === item )
          : one === messagesList ? messages[ item ].step.index === state.step
                                 : stateChanges[ item ].step.index === state.step;
}

function showTabs() {
   byId( 'tabs' ).replaceChildren( ...lists.map( ( one, n ) => {
      const all = one === framesList ? run.listed : one.all().length;
      const shown = state.words.length ? found( one, one.all(), state.words ).length : all;
      return el( 'button', { type: 'button', role: 'tab', id: 'tab-' + one.name, 'aria-selected': one === state.list,
                             'aria-controls': 'list', title: 'Key ' + ( n + 1 ), onclick: () => listIs( one ) },
                 one.title, ' ', el( 'span', { class: 'quiet' },
                                     shown === all ? all.toLocaleString( 'en' ) : shown + ' of ' + all ) );
   } ) );
}

function chip( text, isOn, toggle ) {
   return el( 'button', { type: 'button', class: 'chip', 'aria-pressed': isOn,
                          onclick: () => { toggle(); showList(); } }, text );
}

function showList() {
   const one = state.list;
   const toggle = name => () => state.filters.delete( name ) || state.filters.add( name );
   byId( 'chips' ).replaceChildren(
      chip( 'in this step', state.onlyStep, () => { state.onlyStep = !state.onlyStep; } ),
      ...one.filters( state ).map( filter => {
         const name = one.name + ' ' + filter.name;
         return chip( filter.text, state.filters.has( name ), toggle( name ) );
      } ) );
   if ( one === framesList && state.onlyRule !== null ) {
      byId( 'chips' ).append( chip( 'decided by ' + placeOfRule( run.rules[ state.onlyRule ] ) + ' ✕', true,
                                    () => { state.onlyRule = null; } ) );
   }
   byId( 'list-head' ).className = one.name;
   byId( 'list-head' ).replaceChildren( ...one.columns.map( name => el( 'span', {}, name ) ) );
   byId( 'list' ).setAttribute( 'aria-label', one.title );
   byId( 'list' ).className = one.name;
   const items = itemsOf( one );
   const chosen = one === framesList ? state.frame : one === rulesList ? state.rule : chosenItem;
   if ( items.length === list.items.length && items.every( ( item, n ) => item === list.items[ n ] ) && list.of === one ) {
      list.chosenIs( chosen );
   } else {
      list.of = one;
      list.itemsAre( items, chosen );
      list.reveal( list.chosen );
      list.redraw();
   }
   byId( 'lists' ).querySelectorAll( '.note' ).forEach( note => note.remove() );
   const text = items.length === 0 ? 'Nothing here.' : one.note();
   if ( text ) {
      byId( 'list-head' ).after( el( 'p', { class: 'note quiet' }, text ) );
   }
}

function listIs( one ) {
   state.list = one;
   chosenItem = null;
   showTabs();
   showList();
   byId( 'list' ).focus();
}

// --- Keys

const keys = [
   [ '/', 'search', () => byId( 'search' ).focus() ],
   [ '[', 'the step before', () => stepBy( -1 ) ],
   [ ']', 'the next step', () => stepBy( 1 ) ],
   [ '1', 'frames', () => listIs( framesList ) ],
   [ '2', 'rules', () => listIs( rulesList ) ],
   [ '3', 'messages', () => listIs( messagesList ) ],
   [ '4', 'changes of the state', () => listIs( changesList ) ],
   [ 's', 'to the time line', () => byId( 'steps' ).focus() ],
   [ 'd', 'to the details', () => byId( 'details' ).focus() ],
   [ '?', 'these keys', () => byId( 'help' ).showModal() ]
];

function stepBy( way ) {
   const next = state.step + way;
   if ( run.steps[ next ] ) {
      go( hrefs.step( next ) );
   }
}

function onKey( event ) {
   const isTyping = event.target === byId( 'search' );
   if ( event.key === 'Escape' && !byId( 'help' ).open ) {
      byId( 'search' ).value = '';
      searchIs( '' );
      byId( 'details' ).classList.remove( 'up' );
      byId( 'list' ).focus();
   } else if ( isTyping && ( event.key === 'Enter' || event.key === 'ArrowDown' ) ) {
      event.preventDefault();
      byId( 'list' ).focus();
   } else if ( !isTyping && !event.ctrlKey && !event.metaKey && !event.altKey && !byId( 'help' ).open ) {
      const key = keys.find( one => one[ 0 ] === event.key );
      if ( key ) {
         event.preventDefault();
         key[ 2 ]();
      }
   }
}

function searchIs( text ) {
   state.words = wordsOf( text );
   show();
}

function showHelp() {
   const more = [ [ '↑ ↓ j k', 'the row before, the next row' ], [ 'Page ↑ ↓, Home, End', 'far rows' ],
                  [ 'Tab', 'the next part of the page' ], [ 'Esc', 'clear the search' ] ];
   byId( 'help' ).append( el( 'h2', {}, 'Keys' ),
                          facts( ...[ ...keys, ...more ].map( key => [ el( 'kbd', {}, key[ 0 ] ), key[ 1 ] ] ) ),
                          el( 'form', { method: 'dialog' }, el( 'button', {}, 'Close' ) ) );
}

// --- The head

function showHead() {
   document.title = run.title + ' – vornal run';
   byId( 'title' ).textContent = run.title;
   byId( 'title' ).title = run.file + '\n' + run.description;
   byId( 'variant' ).textContent = run.variant || 'no variant';
   byId( 'verdict' ).replaceChildren( ...verdict() );
   const { frames, copies, drops } = run.totals;
   const numbers = object => Object.entries( object ).map( ( [ name, count ] ) => count.toLocaleString( 'en' ) + ' ' + name );
   const there = run.rules.filter( rule => rule.until === null ).length;
   const dropped = Object.values( drops ).reduce( ( sum, count ) => sum + count, 0 );
   byId( 'totals' ).textContent = [ counted( frames, 'frame' ) + ( dropped ? ' (' + dropped.toLocaleString( 'en' ) + ' dropped)' : '' ),
                                    frames > dropped ? 'copies: ' + numbers( copies ).slice( 0, 6 ).join( ', ' ) : '',
                                    counted( there, 'rule' ) + ' at the end' ].filter( text => text ).join( ' · ' );
   byId( 'totals' ).title = byId( 'totals' ).textContent;
}

function verdict() {
   const { end } = run;
   const tag = ( kind, text ) => el( 'span', { class: 'tag ' + kind }, text );
   const expectations = counted( end.expectations, 'expectation' );
   const parts = {
      completed: () => tag( 'good', end.expectations ? 'passed, ' + expectations : 'completed' ),
      'expectation-failed': () => tag( 'bad', end.failedExpectations + ' of ' + expectations + ' did not hold' ),
      failed: () => tag( 'bad', 'the input was wrong' ),
      stopped: () => tag( 'bad', 'stopped' ),
      interrupted: () => tag( 'bad', 'interrupted by ' + end.interrupted )
   };
   const isExpected = end.stop && end.stop.asExpected && end.failedExpectations === 0;
   return [ isExpected ? tag( 'good', 'stopped, as expected' ) : ( parts[ end.name ] || ( () => tag( '', end.name ) ) )() ];
}

function showNotices() {
   const { end } = run;
   const last = run.steps.length - 1;
   byId( 'notices' ).replaceChildren( ...[
      end.error && el( 'p', { class: 'bad' }, end.error ),
      end.stop && !end.stop.asExpected && el( 'p', { class: 'bad' }, 'STOPPED in ', el( 'a', { href: hrefs.step( last ) }, run.steps[ last ].name ),
                                              ': ' + end.stop.text + '. ', end.stop.assertion && el( 'code', {}, end.stop.assertion.expression ) ),
      run.listed > run.explained && run.explained > 0 &&
         el( 'p', {}, 'The first ' + counted( run.explained, 'frame' ) + ' of ' + run.totals.frames.toLocaleString( 'en' ) + ' have an explanation.' )
   ].filter( one => one ) );
}

// --- Paper shows all rows

function print( isWhole ) {
   for ( const one of [ list, timeLine.list ] ) {
      one.drawn = null;
      one.draw( isWhole );
   }
}

showHead();
showNotices();
showHelp();
byId( 'search' ).addEventListener( 'input', event => searchIs( event.target.value ) );
byId( 'help-button' ).addEventListener( 'click', () => byId( 'help' ).showModal() );
byId( 'details' ).addEventListener( 'click', event => {
   const button = event.target.closest( '[data-only-rule]' );
   if ( button ) {
      state.onlyRule = Number( button.dataset.onlyRule );
      listIs( framesList );
   }
} );
document.addEventListener( 'keydown', onKey );
addEventListener( 'hashchange', () => follow() );
addEventListener( 'popstate', () => follow() );
addEventListener( 'beforeprint', () => print( true ) );
addEventListener( 'afterprint', () => print( false ) );
follow();
