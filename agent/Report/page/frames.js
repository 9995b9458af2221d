'use strict';

// The list of frames.

const framesList = {
   name: 'frames',
   title: 'Frames',
   columns: [ 'Frame', 'Step', 'From', 'Kind', 'Source → destination', 'VLAN', 'Bytes', 'Outcome' ],
   all: () => Array.from( { length: run.listed }, ( _, n ) => n + 1 ),
   filters: () => [
      { name: 'kept', text: 'kept back', has: number => run.frame( number ).fate.keptBack.length > 0 },
      { name: 'dropped', text: 'dropped', has: number => run.frame( number ).fate.dropReason !== null },
      { name: 'twice', text: 'arrives twice', has: number => run.frame( number ).isTwice }
   ],
   textOf: number => {
      const frame = run.frame( number );
      const names = [ ...frame.fate.rules ].map( rule => run.rules[ rule ].last.name );
      return [ 'frame ' + number, frame.from, frame.arrival, frame.kind, frame.source, frame.destination,
               'VLAN ' + frame.vlan, frame.vni === null ? '' : 'VNI ' + frame.vni, fateText( frame.fate ),
               frame.isTwice ? 'arrives twice' : '', ...names ].join( ' ' );
   },
   row: number => {
      const frame = run.frame( number );
      const { fate } = frame;
      const kind = fate.dropReason ? ' dropped' : fate.keptBack.length ? ' kept' : '';
      return el( 'div', { class: 'frame' + kind },
                 el( 'span', { class: 'number' }, number ),
                 el( 'span', { class: 'number quiet' }, frame.step ),
                 el( 'span', { class: 'code' }, frame.from ),
                 el( 'span', {}, frame.kind || '–' ),
                 el( 'span', { class: 'code quiet macs' },
                     frame.source ? frame.source + ' → ' + frame.destination : '–' ),
                 el( 'span', { class: 'number quiet' }, frame.vlan === null ? '–' : frame.vlan ),
                 el( 'span', { class: 'number quiet' }, frame.length ),
                 el( 'span', { class: 'outcome', title: fateText( fate ) }, outcomeOf( frame ) ) );
   },
   href: number => hrefs.frame( number ),
   note: () => run.listed < run.totals.frames &&
      'The first ' + counted( run.listed, 'frame' ) + ' of ' + run.totals.frames.toLocaleString( 'en' ) +
      ' are listed; the details of each step have the totals of all its frames.'
};

function outcomeOf( frame ) {
   const { fate } = frame;
   if ( fate.dropReason ) {
      return el( 'span', { class: 'mark' }, 'dropped: ' + fate.dropReason );
   }
   const marks = fate.keptBack.map( copy => el( 'span', { class: 'mark kept' },
                                                '✕ ' + goalOf( copy ) +
                                                ( copy.rule === null ? '' : ' · entry ' + run.rules[ copy.rule ].entry ) ) );
   if ( frame.isTwice ) {
      marks.push( el( 'span', { class: 'mark bad' }, 'twice' ) );
   }
   const goals = fate.sent.map( copy => copy.vtep || copy.interface ).join( ', ' );
   return [ marks, goals ? '→ ' + goals : marks.length ? null : 'leaves nowhere' ];
}
