'use strict';

// Finds the items of a list whose texts have all the words, whatever their case. The texts are made
// once, when somebody first searches.

const searchTexts = new Map();

function textsOf( list ) {
   if ( !searchTexts.has( list.name ) ) {
      const texts = new Map();
      list.all().forEach( item => texts.set( item, list.textOf( item ).toLowerCase() ) );
      searchTexts.set( list.name, texts );
   }
   return searchTexts.get( list.name );
}

function wordsOf( text ) {
   return text.toLowerCase().split( /\s+/ ).filter( word => word );
}

function found( list, items, words ) {
   if ( words.length === 0 ) {
      return items;
   }
   const texts = textsOf( list );
   return items.filter( item => words.every( word => texts.get( item ).includes( word ) ) );
}

// The indices of the steps that have the words in their text, lines or changes; null without words.
function foundSteps( words ) {
   if ( words.length === 0 ) {
      return null;
   }
   const has = text => words.every( word => text.toLowerCase().includes( word ) );
   return new Set( run.steps.filter( step => has( step.name + ' ' + step.text ) ||
                                             step.lines.some( line => has( line.text ) ) ||
                                             step.changes.some( change => has( textOfChange( change ) ) ) )
                      .map( step => step.index ) );
}

// The names of the places that have the words; null without words, or without such a place.
function foundPlaces( words ) {
   const names = [ ...placeNames ].filter( name => words.every( word => name.toLowerCase().includes( word ) ) );
   return words.length === 0 || names.length === 0 ? null : new Set( names );
}
