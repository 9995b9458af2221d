'use strict';

// The list of rules: all that the run had, those of the step in view before the others' colours.

const rulesList = {
   name: 'rules',
   title: 'Rules',
   columns: [ 'Rule', 'Group', 'Matches', 'Does', 'Priority', 'Steps', 'Frames', 'State behind it' ],
   all: () => run.rules.map( rule => rule.number ),
   filters: state => [
      { name: 'now', text: 'in the chip after this step', has: number => isThere( run.rules[ number ], state.step ) }
   ],
   textOf: number => {
      const rule = run.rules[ number ];
      return [ placeOfRule( rule ), rule.group, rule.last.name, rule.last.matches, rule.last.does,
               rule.because ].join( ' ' );
   },
   row: ( number, state ) => {
      const rule = run.rules[ number ];
      const { last } = rule;
      return el( 'div', { class: 'rule' + ( isThere( rule, state.step ) ? '' : ' gone' ), title: last.name },
                 el( 'span', {}, placeOfRule( rule ) ),
                 el( 'span', { class: 'quiet' }, rule.group ),
                 el( 'span', { class: 'code' }, last.matches ),
                 el( 'span', { class: 'code' }, last.does, last.isWritten ? '' : ' (staged only)' ),
                 el( 'span', { class: 'number' }, last.priority === null ? 'default' : last.priority ),
                 el( 'span', { class: 'number quiet' }, lifeText( rule ) ),
                 el( 'span', { class: 'number' }, framesByRule[ number ] || '' ),
                 el( 'span', { class: 'quiet' }, rule.because ) );
   },
   href: number => hrefs.rule( number ),
   note: () => run.rulesLeftOut > 0 && counted( run.rulesLeftOut, 'more rule' ) + ' came in the run.'
};

// The rule is in the chip at the end of the step at that index.
function isThere( rule, index ) {
   const number = index - 1;
   return rule.since <= number && ( rule.until === null || rule.until > number );
}

function lifeText( rule ) {
   return rule.since + '–' + ( rule.until === null ? '' : rule.until );
}
