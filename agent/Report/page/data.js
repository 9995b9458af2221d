'use strict';

// The run, read from the page's data. agent/Report/Data.cpp writes it: texts stand once, and
// everywhere else as their numbers.

const run = readRun( JSON.parse( byId( 'data' ).textContent ) );

function readRun( data ) {
   const text = number => number === null ? null : data.texts[ number ];
   const rules = data.rules.map( ( rule, number ) => readRule( rule, number, text ) );
   const fates = data.fates.map( fate => readFate( fate, text ) );
   const steps = readSteps( data, text );
   return {
      title: data.title,
      file: data.file,
      description: data.description,
      variant: data.variant,
      end: data.end,
      units: data.device.units,
      underlay: new Set( data.device.underlay ),
      totals: data.totals,
      explained: data.explained,
      rulesLeftOut: data.rulesLeftOut,
      steps,
      rules,
      fates,
      text,
      listed: data.frames.length,
      frame: number => readFrame( data.frames[ number - 1 ], number, text, fates ),
      tree: number => readTree( data.trees, number, text ),
      // The rows of a question's answer at the end of a step, as objects by column.
      table: ( name, step ) => readTable( data.tables[ name ], steps[ step ].tables[ name ] )
   };
}

// --- Steps: the first one is the state before the plug-in is loaded

function readSteps( data, text ) {
   let first = 1;
   return data.steps.map( ( step, index ) => {
      const read = {
         ...step,
         index,
         firstFrame: first,
         lines: step.lines.map( line => ( { kind: text( line[ 0 ] ), text: withoutKind( text( line[ 1 ] ) ) } ) ),
         changes: step.changes.map( change => ( { path: text( change[ 0 ] ),
                                                  attribute: text( change[ 1 ] ),
                                                  key: text( change[ 2 ] ),
                                                  from: text( change[ 3 ] ),
                                                  to: text( change[ 4 ] ) } ) ),
         rules: step.rules.map( change => ( { what: change[ 0 ], rule: change[ 1 ] } ) )
      };
      first += step.frames;
      return read;
   } );
}

// The text of a line, whose kind stands beside it.
function withoutKind( line ) {
   return line.replace( /^(trace|log|warning:) /, '' );
}

// Where a step with that number stands among the steps.
function indexOfStep( number ) {
   return number + 1;
}

function readTable( table, version ) {
   if ( !table || version === undefined ) {
      return [];
   }
   return table.versions[ version ].map(
      row => Object.fromEntries( table.columns.map( ( name, n ) => [ name, table.rows[ row ][ n ] ] ) ) );
}

// --- Rules

function readRule( rule, number, text ) {
   const forms = rule.forms.map( form => ( { step: form[ 0 ],
                                             name: text( form[ 1 ] ),
                                             matches: text( form[ 2 ] ),
                                             does: text( form[ 3 ] ),
                                             priority: form[ 4 ],
                                             isWritten: form[ 5 ] } ) );
   const grounds = rule.grounds.map( ground => ( { step: ground[ 0 ],
                                                   because: text( ground[ 1 ] ) } ) );
   const nothing = { name: '', matches: '', does: '', priority: null, isWritten: false };
   return { ...rule, number, forms, grounds, last: forms[ forms.length - 1 ] || nothing,
            because: grounds.length ? grounds[ grounds.length - 1 ].because : '' };
}

// --- Frames

function readFate( fate, text ) {
   const [ dropReason, lookups, copies ] = fate;
   const read = {
      dropReason: text( dropReason ),
      lookups: lookups.map( lookup => ( { unit: lookup[ 0 ], rule: lookup[ 1 ],
                                          classId: lookup[ 2 ] } ) ),
      copies: copies.map( copy => ( { interface: text( copy[ 0 ] ),
                                      unit: copy[ 1 ],
                                      port: copy[ 2 ],
                                      vtep: text( copy[ 3 ] ),
                                      verdict: text( copy[ 4 ] ),
                                      rule: copy[ 5 ] } ) )
   };
   read.sent = read.copies.filter( copy => copy.verdict === 'sent' );
   read.keptBack = read.copies.filter(
      copy => copy.rule !== null || copy.verdict === 'masked' || copy.verdict === 'not-designated' );
   read.rules = new Set( [ ...read.lookups, ...read.copies ].map( one => one.rule )
                            .filter( rule => rule !== null ) );
   return read;
}

function readFrame( frame, number, text, fates ) {
   return {
      number,
      step: frame[ 0 ],
      arrival: text( frame[ 1 ] ),
      unit: frame[ 2 ],
      port: frame[ 3 ],
      length: frame[ 4 ],
      vtep: text( frame[ 5 ] ),
      vni: frame[ 6 ],
      kind: text( frame[ 7 ] ),
      source: text( frame[ 8 ] ),
      destination: text( frame[ 9 ] ),
      vlan: frame[ 10 ],
      fate: fates[ frame[ 11 ] ],
      tree: frame[ 12 ],
      isTwice: frame[ 13 ] === 1,
      from: text( frame[ 5 ] ) || text( frame[ 1 ] )
   };
}

// A node of an explanation; its children are read when somebody looks at them.
function readTree( trees, number, text ) {
   const [ kind, words, rule, ...children ] = trees[ number ];
   return {
      kind: text( kind ),
      text: text( words ),
      rule: rule === 0 ? null : rule - 1,
      children: () => children.map( child => readTree( trees, child, text ) )
   };
}
