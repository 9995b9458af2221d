'use strict';

// The list of messages, and the list of changes of the published state.

const kLineWords = {
   logged: 'log', traced: 'trace', warning: 'warning', held: 'held', failed: 'failed', audited: 'audit',
   outputLine: 'output', entityDumped: 'dump', rulesDumped: 'dump', pluginPass: 'own pass'
};

const messagesList = {
   name: 'messages',
   title: 'Messages',
   columns: [ 'Step', 'Kind', 'Text' ],
   all: () => messages.map( ( _, n ) => n ),
   filters: () => [
      { name: 'log', text: 'log', has: n => messages[ n ].line.kind === 'logged' },
      { name: 'expectations', text: 'expectations', has: n => /^(held|failed)$/.test( messages[ n ].line.kind ) },
      { name: 'traces', text: 'traces', has: n => messages[ n ].line.kind === 'traced' }
   ],
   textOf: n => kindOfLine( messages[ n ].line ) + ' ' + messages[ n ].line.text,
   row: n => el( 'div', { class: 'message ' + messages[ n ].line.kind, title: messages[ n ].line.text },
                 el( 'span', { class: 'number quiet' }, numberOfStep( messages[ n ].step ) ),
                 el( 'span', { class: 'quiet' }, kindOfLine( messages[ n ].line ) ),
                 el( 'span', { class: 'code' }, messages[ n ].line.text ) ),
   href: n => hrefs.step( messages[ n ].step.index ),
   note: () => null
};

const messages = run.steps.flatMap( step => step.lines.map( line => ( { step, line } ) ) );

const changesList = {
   name: 'state',
   title: 'State',
   columns: [ 'Step', 'Path', 'Attribute', 'From', 'To' ],
   all: () => stateChanges.map( ( _, n ) => n ),
   filters: () => [],
   textOf: n => textOfChange( stateChanges[ n ].change ),
   row: n => {
      const { step, change } = stateChanges[ n ];
      return el( 'div', { class: 'change', title: textOfChange( change ) },
                 el( 'span', { class: 'number quiet' }, numberOfStep( step ) ),
                 el( 'span', { class: 'code quiet' }, change.path ),
                 el( 'span', { class: 'code' }, attributeOf( change ) ),
                 el( 'span', { class: 'code removed' }, change.from === null ? '' : change.from ),
                 el( 'span', { class: 'code' }, change.to === null ? '(removed)' : change.to ) );
   },
   href: n => hrefs.step( stateChanges[ n ].step.index ),
   note: () => null
};

const stateChanges = run.steps.flatMap( step => step.changes.map( change => ( { step, change } ) ) );

function kindOfLine( line ) {
   return kLineWords[ line.kind ] || 'plug-in';
}

function numberOfStep( step ) {
   return step.number === null ? '–' : step.number;
}

function attributeOf( change ) {
   return change.attribute + ( change.key === null ? '' : '[' + change.key + ']' );
}

function textOfChange( change ) {
   const values = change.from === null ? ( change.to ? ' = ' + change.to : ' added' )
                  : change.to === null ? ' removed (was ' + change.from + ')'
                                       : ': ' + change.from + ' → ' + change.to;
   return change.path + ' ' + attributeOf( change ) + values;
}
