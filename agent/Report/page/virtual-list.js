'use strict';

// A list of which only the rows in sight are in the page, so ten thousand rows scroll like ten. All
// rows have the same height, that of --row in the style.
//
//    render( item )   the row; an item is a number
//    choose( item )   somebody chose the row with a key or a click
class VirtualList {
   constructor( node, { render, choose } ) {
      this.node = node;
      this.render = render;
      this.choose = choose;
      this.items = [];
      this.chosen = -1;  // its place among the items
      this.space = el( 'div', { class: 'space', role: 'presentation' } );
      this.rows = el( 'div', { class: 'rows', role: 'presentation' } );
      this.space.append( this.rows );
      node.replaceChildren( this.space );
      node.addEventListener( 'scroll', () => this.draw(), { passive: true } );
      node.addEventListener( 'keydown', event => this.key( event ) );
      node.addEventListener( 'click', event => this.click( event ) );
      new ResizeObserver( () => this.draw() ).observe( node );
   }

   get rowHeight() {
      return parseFloat( getComputedStyle( this.node ).getPropertyValue( '--row' ) ) || 26;
   }

   itemsAre( items, chosenItem ) {
      this.items = items;
      this.chosen = items.indexOf( chosenItem );
      this.drawn = null;
      this.draw();
   }

   // Marks the item and brings it into sight.
   chosenIs( item ) {
      const place = this.items.indexOf( item );
      if ( place === this.chosen && place !== -1 ) {
         this.redraw();
         return;
      }
      this.chosen = place;
      this.reveal( place );
      this.redraw();
   }

   reveal( place ) {
      if ( place < 0 ) {
         return;
      }
      const row = this.rowHeight;
      const height = this.node.clientHeight;
      const above = this.node.scrollTop - place * row;
      const below = ( place + 1 ) * row - this.node.scrollTop - height;
      if ( Math.max( above, below ) > height ) {  // far away: into the middle
         this.node.scrollTop = place * row - height / 2;
      } else if ( above > 0 ) {
         this.node.scrollTop -= above;
      } else if ( below > 0 ) {
         this.node.scrollTop += below;
      }
   }

   redraw() {
      this.drawn = null;
      this.draw();
   }

   draw( isWhole ) {
      const row = this.rowHeight;
      const overlap = 8;  // rows beyond both edges
      const most = 1500;  // on paper
      const first = isWhole ? 0 : Math.max( 0, Math.floor( this.node.scrollTop / row ) - overlap );
      const inSight = Math.ceil( this.node.clientHeight / row ) + 2 * overlap;
      const last = Math.min( this.items.length, isWhole ? most : first + inSight );
      const drawn = first + ' ' + last + ' ' + this.items.length;
      if ( drawn === this.drawn ) {
         return;
      }
      this.drawn = drawn;
      this.space.style.height = isWhole ? 'auto' : this.items.length * row + 'px';
      this.rows.style.transform = isWhole ? 'none' : 'translateY(' + first * row + 'px)';
      const rows = [];
      for ( let place = first; place < last; ++place ) {
         rows.push( this.row( place ) );
      }
      if ( isWhole && last < this.items.length ) {
         rows.push( el( 'p', { class: 'quiet' },
                        counted( this.items.length - last, 'more row' ) + ' not printed' ) );
      }
      this.rows.replaceChildren( ...rows );
      const chosen = this.rows.querySelector( '[aria-selected=true]' );
      chosen ? this.node.setAttribute( 'aria-activedescendant', chosen.id )
             : this.node.removeAttribute( 'aria-activedescendant' );
   }

   row( place ) {
      const row = this.render( this.items[ place ] );
      row.classList.add( 'row' );
      row.id = this.node.id + '-' + place;
      row.dataset.place = place;
      row.setAttribute( 'role', 'option' );
      row.setAttribute( 'aria-posinset', place + 1 );
      row.setAttribute( 'aria-setsize', this.items.length );
      row.setAttribute( 'aria-selected', place === this.chosen );
      return row;
   }

   click( event ) {
      const row = event.target.closest( '.row' );
      if ( row && !event.target.closest( 'a' ) ) {
         this.take( Number( row.dataset.place ) );
      }
   }

   take( place ) {
      if ( this.items.length === 0 ) {
         return;
      }
      this.chosen = Math.min( Math.max( place, 0 ), this.items.length - 1 );
      this.reveal( this.chosen );
      this.redraw();
      this.choose( this.items[ this.chosen ] );
   }

   key( event ) {
      if ( event.ctrlKey || event.metaKey || event.altKey ) {
         return;
      }
      const page = Math.max( 1, Math.floor( this.node.clientHeight / this.rowHeight ) - 1 );
      const ways = { ArrowDown: 1, j: 1, ArrowUp: -1, k: -1, PageDown: page, PageUp: -page,
                     Home: -Infinity, End: Infinity };
      const way = ways[ event.key ];
      if ( way !== undefined ) {
         event.preventDefault();
         this.take( this.chosen === -1 && way === -1 ? 0 : this.chosen + way );
      }
   }
}
