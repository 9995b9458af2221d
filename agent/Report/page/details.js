'use strict';

// The details of the run, of a step, a frame, a rule, or a place of the drawing.

const kMostRows = 200;  // of a list in the details

function facts( ...pairs ) {
   return el( 'dl', {}, pairs.filter( pair => pair && pair[ 1 ] !== null && pair[ 1 ] !== '' && pair[ 1 ] !== undefined )
                           .map( ( [ name, value ] ) => [ el( 'dt', {}, name ), el( 'dd', {}, value ) ] ) );
}

function part( title, rows, form, isOpen = true ) {
   if ( rows.length === 0 ) {
      return null;
   }
   const shown = rows.slice( 0, kMostRows );
   return el( 'details', { open: isOpen },
              el( 'summary', {}, title, el( 'span', { class: 'quiet' }, ' ' + rows.length.toLocaleString( 'en' ) ) ),
              el( 'ul', {}, shown.map( row => el( 'li', {}, form( row ) ) ),
                  rows.length > shown.length &&
                  el( 'li', { class: 'quiet' }, counted( rows.length - shown.length, 'more' ).replace( /s$/, '' ) +
                                                '; the lists have all' ) ) );
}

// --- The run as a whole

function runDetails() {
   const { end, totals } = run;
   const numbers = object => Object.entries( object ).map( ( [ name, count ] ) => count.toLocaleString( 'en' ) + ' ' + name ).join( ', ' );
   const failed = run.steps.flatMap( step => step.lines.filter( line => line.kind === 'failed' )
                                                 .map( line => ( { step, line } ) ) );
   return [
      el( 'h2', {}, run.title ),
      el( 'p', { class: 'lines' }, run.description ),
      facts( [ 'file', el( 'span', { class: 'code' }, run.file ) ], [ 'variant', run.variant ],
             [ 'end', end.name ], [ 'expectations', end.expectations - end.failedExpectations + ' of ' + end.expectations + ' held' ],
             [ 'frames', totals.frames ? totals.frames.toLocaleString( 'en' ) : '' ],
             [ 'copies', numbers( totals.copies ) ], [ 'dropped', numbers( totals.drops ) ],
             [ 'rules', run.rules.filter( rule => rule.until === null ).length + ' at the end, ' + run.rules.length + ' in all' ] ),
      end.stop && stopDetails( end.stop ),
      part( 'Not as expected', failed, one => [ el( 'a', { href: hrefs.step( one.step.index ) }, one.step.name ), ': ', one.line.text ] ),
      el( 'h3', {}, 'In the drawing' ),
      el( 'ul', { class: 'legend' },
          [ [ 'sent', 'a copy leaves' ], [ 'kept', 'a copy is kept back' ], [ 'lane', 'a segment, and the VTEPs that share it' ] ].map(
             ( [ kind, text ] ) => el( 'li', {}, legendLine( kind ), text ) ),
          [ [ 'guarded', 'the rules protect from copies of this VTEP' ], [ 'open', 'they do not, and should' ] ].map(
             ( [ kind, text ] ) => el( 'li', {}, legendDot( kind ), text ) ) ),
      el( 'p', { class: 'quiet' }, 'Press ? for the keys.' )
   ];
}

function legendLine( kind ) {
   return svg( 'svg', { width: 30, height: 10 }, svg( 'g', { class: 'path' },
      svg( 'path', { class: kind + ( kind === 'lane' ? ' seg-0' : '' ), d: 'M2 5H28' } ) ) );
}

function legendDot( kind ) {
   return svg( 'svg', { width: 30, height: 10 }, svg( 'g', { class: 'vtep ' + kind }, svg( 'circle', { cx: 15, cy: 5, r: 3.5 } ) ) );
}

// --- A step

function stepDetails( step ) {
   const isLast = step.index === run.steps.length - 1;
   return [
      el( 'h2', {}, step.name ),
      el( 'p', {}, linked( step.text ) ),
      facts( [ 'place', step.place && el( 'span', { class: 'code' }, step.place ) ],
             [ 'chip calls', step.calls ? step.calls.toLocaleString( 'en' ) +
                                          ( step.failedCalls ? ', ' + step.failedCalls + ' failed' : '' ) : '' ],
             [ 'frames', step.frames ? framesOfStep( step ) : '' ] ),
      isLast && run.end.stop && stopDetails( run.end.stop ),
      part( 'Rules', step.rules, ruleChange ),
      part( 'Messages', step.lines, line => [ el( 'span', { class: 'quiet' }, kindOfLine( line ) + ' ' ),
                                              el( 'span', { class: 'line ' + line.kind }, linked( line.text ) ) ] ),
      leftOut( step.linesLeftOut, 'message' ),
      part( 'State changes', step.changes, change => linked( textOfChange( change ) ) ),
      leftOut( step.changesLeftOut, 'change' ),
      step.frameTable.length > 0 && [ el( 'h3', {}, 'Frames by sender and kind' ),
                                      el( 'pre', { tabindex: 0 }, step.frameTable.join( '\n' ) ) ],
      part( 'TCAM', run.table( 'tcam', step.index ), tcamText, false )
   ];
}

function framesOfStep( step ) {
   const last = Math.min( step.firstFrame + step.frames - 1, run.listed );
   return step.firstFrame > run.listed ? step.frames.toLocaleString( 'en' ) : [
      counted( step.frames, 'frame' ), ', ',
      el( 'a', { href: hrefs.frame( step.firstFrame ) }, step.firstFrame ),
      last > step.firstFrame ? [ ' to ', el( 'a', { href: hrefs.frame( last ) }, last ) ] : null ];
}

function leftOut( count, thing ) {
   return count > 0 && el( 'p', { class: 'quiet' }, counted( count, 'more ' + thing ) + ' left out; run --json has them' );
}

function ruleChange( change ) {
   const rule = run.rules[ change.rule ];
   return [ el( 'span', { class: 'mark ' + { added: 'good', changed: 'changed', removed: 'removed' }[ change.what ] },
                change.what ), ' ', ruleLink( rule.number ), ' ', rule.last.matches, ': ', rule.last.does ];
}

function tcamText( row ) {
   return 'unit ' + row.unit + ', ' + row.group + ': ' + row.plugin + ' + ' + row.others + ' of ' + row.capacity +
          ', most ' + row.most + ( row.refused ? ', ' + row.refused + ' refused' : '' ) +
          ( row.without && row.without.length ? '; without: ' + row.without.join( ', ' ) : '' );
}

function stopDetails( stop ) {
   return el( 'section', { class: stop.asExpected ? 'stop expected' : 'stop' },
              el( 'h3', {}, stop.asExpected ? 'Stopped, as expected' : 'Stopped' ),
              el( 'p', {}, stop.text ),
              stop.assertion && facts( [ 'assertion', el( 'code', {}, stop.assertion.expression ) ],
                                       [ 'at', el( 'code', {}, stop.assertion.at ) ],
                                       [ 'in', el( 'code', {}, stop.assertion.in ) ] ),
              part( 'Known limits', stop.limits, limit => [ el( 'b', {}, limit.title ), '. Remedy: ', withCode( limit.remedy ) ] ),
              part( 'Last lines of the trace ring', stop.traces, line => el( 'code', {}, line ), false ),
              part( 'Last lines printed', stop.output, line => el( 'code', {}, line ), false ) );
}

// Parts of the text between backquotes as code.
function withCode( text ) {
   return text.split( '`' ).map( ( one, n ) => n % 2 === 0 ? one : el( 'code', {}, one ) );
}

// --- A frame

function frameDetails( frame ) {
   const copies = frame.fate.copies.filter( copy => copy.verdict !== 'arrival' );
   return [
      el( 'h2', {}, 'frame ' + frame.number ),
      facts( [ 'step', stepLink( frame.step ) ],
             [ 'from', linked( frame.vtep ? 'VTEP ' + frame.vtep + ' on ' + frame.arrival : frame.arrival ) ],
             [ 'addresses', frame.source && el( 'span', { class: 'code' }, frame.source + ' → ' + frame.destination ) ],
             [ 'kind', frame.kind ],
             [ 'VLAN', frame.vlan === null ? '' : frame.vlan + ( frame.vni === null ? '' : ', VNI ' + frame.vni ) ],
             [ 'length', counted( frame.length, 'byte' ) ],
             [ 'dropped', frame.fate.dropReason ] ),
      part( 'Copies', copies, copyText ),
      el( 'h3', {}, 'Why' ),
      frame.tree === null
         ? el( 'p', { class: 'quiet' }, run.explained === 0 ? 'This run has no explanations.'
              : 'The first ' + counted( run.explained, 'frame' ) + ' are explained; for this one ask vornal explain.' )
         : el( 'div', { class: 'tree' }, run.tree( frame.tree ).children().map( treeNode ) )
   ];
}

function copyText( copy ) {
   const isSent = copy.verdict === 'sent';
   return [ el( 'span', { class: 'mark ' + ( isSent ? 'good' : 'kept' ) }, isSent ? 'sent' : '✕ ' + copy.verdict ), ' ',
            linked( goalOf( copy ) ), copy.port === null ? '' : ' by unit ' + copy.unit + ' port ' + copy.port,
            copy.rule === null ? null : [ ', ', ruleLink( copy.rule ) ] ];
}

// Headers and interfaces without a copy are folded up.
function treeNode( node ) {
   const text = el( 'span', { class: 'node ' + node.kind }, withRuleLink( node ) );
   const children = node.children();
   if ( children.length === 0 ) {
      return el( 'div', { class: 'leaf' }, text );
   }
   const isOpen = ![ 'headers', 'no-copies' ].includes( node.kind );
   return el( 'details', { open: isOpen }, el( 'summary', {}, text ), children.map( treeNode ) );
}

// The node's text; the entry that it names leads to the rule.
function withRuleLink( node ) {
   const entry = node.rule === null ? null : /^entry \d+/.exec( node.text );
   return entry ? [ ruleLink( node.rule, entry[ 0 ] ), linked( node.text.slice( entry[ 0 ].length ) ) ]
                : linked( node.text );
}

// --- A rule

function ruleDetails( rule ) {
   const { last } = rule;
   const before = rule.forms.slice( 0, -1 ).reverse();
   return [
      el( 'h2', {}, placeOfRule( rule ) ),
      el( 'p', {}, '“' + last.name + '”' ),
      facts( [ 'group', rule.group ],
             [ 'matches', linked( last.matches ) ],
             [ 'does', last.does + ( last.isWritten ? '' : ' (staged only)' ) ],
             [ 'priority', last.priority === null ? 'the default of the group' : last.priority ],
             [ 'programmed', stepLink( rule.since ) ],
             [ 'removed', rule.until === null ? '' : stepLink( rule.until ) ] ),
      el( 'h3', {}, 'State behind it' ),
      rule.grounds.length === 0
         ? el( 'p', { class: 'quiet' }, 'The rule was not there at the end of a step.' )
         : el( 'ul', {}, rule.grounds.slice().reverse().map(
              ground => el( 'li', {}, linked( ground.because ), el( 'span', { class: 'quiet' }, ' · since ' ),
                            stepLink( ground.step ) ) ) ),
      part( 'Published values', changesBehind( rule ),
            one => [ linked( textOfChange( one.change ) ), el( 'span', { class: 'quiet' }, ' · ' ),
                     el( 'a', { href: hrefs.step( one.step.index ) }, one.step.name ) ] ),
      part( 'Earlier forms', before, form => [ stepLink( form.step ), ': ' + form.matches + ': ' + form.does ] ),
      framesOfRule( rule )
   ];
}

// The changes of the state that name a place that the rule's grounds name.
function changesBehind( rule ) {
   const names = new Set( rule.grounds.flatMap( ground => [ ...ground.because.matchAll( placePattern || /$^/g ) ] )
                             .map( match => match[ 0 ] ) );
   return changesAbout( names );
}

function changesAbout( names ) {
   return stateChanges.filter( ( { change } ) => names.has( change.key ) || names.has( change.to ) || names.has( change.from ) ||
                                                 [ ...names ].some( name => change.path.includes( '[' + name + ']' ) ) );
}

function framesOfRule( rule ) {
   const numbers = [];
   for ( let number = 1; number <= run.listed && numbers.length <= kMostRows; ++number ) {
      if ( run.frame( number ).fate.rules.has( rule.number ) ) {
         numbers.push( number );
      }
   }
   const count = framesByRule[ rule.number ];
   return [ el( 'h3', {}, 'Frames that it decided ', el( 'span', { class: 'quiet' }, count.toLocaleString( 'en' ) ) ),
            count > 0 && el( 'p', {}, el( 'button', { type: 'button', 'data-only-rule': rule.number }, 'Show them in the list' ) ),
            el( 'p', { class: 'numbers' }, numbers.slice( 0, kMostRows ).map(
               number => [ el( 'a', { href: hrefs.frame( number ) }, number ), ' ' ] ), count > kMostRows ? '…' : '' ) ];
}

// --- A place

// Links to the first of the places, and how many more there are.
function someOf( names, most = 6 ) {
   const links = names.slice( 0, most ).flatMap( name => [ placeLink( name ), ', ' ] ).slice( 0, -1 );
   return names.length === 0 ? 'nobody' : names.length <= most ? links : [ links, ' and ' + ( names.length - most ) + ' more' ];
}

function placeDetails( name, index ) {
   const row = ( table, is ) => run.table( table, index ).filter( is );
   const vtep = row( 'vteps', one => one.vtep === name )[ 0 ];
   const ports = row( 'ports', one => one.interface === name || one.portChannel === name );
   const segment = row( 'segments', one => one.segment === name )[ 0 ];
   const rules = run.rules.filter( rule => [ rule.because, rule.last.matches ].some(
      text => [ ...text.matchAll( placePattern || /$^/g ) ].some( match => match[ 0 ] === name ) ) );
   const isGone = !vtep && ports.length === 0 && !segment;
   return [
      el( 'h2', {}, vtep ? 'VTEP ' + name : name ),
      isGone && el( 'p', { class: 'quiet' }, 'It is not there after ' + run.steps[ index ].name + '.' ),
      vtep && facts( [ 'protection', vtep.protection ], [ 'virtual port', vtep.virtualPort ],
                     [ 'source gport', vtep.gport ], [ 'class id', vtep.classId ],
                     [ 'segments', vtep.segment.length ? someOf( vtep.segment ) : '' ] ),
      segment && facts( [ 'segment with', segment.vtep.length ? someOf( segment.vtep, kMostRows ) : 'no VTEP' ] ),
      part( 'Ports', ports, port => [ linked( port.interface ), ', unit ' + port.unit + ' port ' + port.port,
                                      port.keepsBackFrom ? [ '; keeps back from ', someOf( port.keepsBackFrom ) ] : null ] ),
      part( 'Rules', rules, rule => [ ruleLink( rule.number ), ' ', rule.last.matches, ': ', rule.last.does,
                                      isThere( rule, index ) ? null : el( 'span', { class: 'quiet' }, ' · not there now' ) ] ),
      part( 'State changes', changesAbout( new Set( [ name ] ) ),
            one => [ linked( textOfChange( one.change ) ), el( 'span', { class: 'quiet' }, ' · ' ),
                     el( 'a', { href: hrefs.step( one.step.index ) }, one.step.name ) ] )
   ];
}
