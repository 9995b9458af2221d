'use strict';

// Makes an element. Attributes whose names begin with "on" are listeners; null and false leave one
// out, except those of ARIA. Texts become text and never markup.
function el( tag, attributes, ...children ) {
   return filled( document.createElement( tag ), attributes, children );
}

function svg( tag, attributes, ...children ) {
   return filled( document.createElementNS( 'http://www.w3.org/2000/svg', tag ), attributes,
                  children );
}

function filled( node, attributes, children ) {
   for ( const [ name, value ] of Object.entries( attributes || {} ) ) {
      if ( name.startsWith( 'on' ) ) {
         node.addEventListener( name.slice( 2 ), value );
      } else if ( name.startsWith( 'aria-' ) ) {
         node.setAttribute( name, value );
      } else if ( value !== null && value !== undefined && value !== false ) {
         node.setAttribute( name, value === true ? '' : value );
      }
   }
   node.append( ...children.flat( Infinity ).filter( child => child !== null && child !== undefined
                                                              && child !== false ) );
   return node;
}

function byId( id ) {
   return document.getElementById( id );
}

function counted( count, thing ) {
   return count.toLocaleString( 'en' ) + ' ' + thing + ( count === 1 ? '' : 's' );
}

// The text, shortened in its middle to that many characters.
function shortened( text, most ) {
   if ( text.length <= most ) {
      return text;
   }
   const half = Math.max( 1, ( most - 1 ) / 2 );
   return text.slice( 0, Math.ceil( half ) ) + '…' + text.slice( text.length - Math.floor( half ) );
}
