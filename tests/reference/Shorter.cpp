#include <Shorter.h>

namespace Moves {

namespace {

class Shortening {
 public:
   Shortening( Plot plot, Fails const & fails ) : plot_( std::move( plot ) ), fails_( fails ) {}

   Plot run() {
      simplifyWorld();
      for ( std::size_t size = plot_.moves.size() / 2; size > 1; size /= 2 ) {
         takeAway( size );
      }
      takeAwayAll();
      simplifyWorld();
      simplifyMoves();
      takeAwayAll();
      return plot_;
   }

 private:
   bool isKept( Plot const & other ) {
      bool const isFailing = fails_( other );
      if ( isFailing ) {
         plot_ = other;
      }
      return isFailing;
   }

   // So many moves at a time, from the end on. Whether any could be missed.
   bool takeAway( std::size_t size ) {
      bool isAnyGone = false;
      for ( std::size_t end = plot_.moves.size(); end > 0; ) {
         std::size_t const begin = end > size ? end - size : 0;
         Plot less = plot_;
         less.moves.erase( less.moves.begin() + static_cast< long >( begin ),
                           less.moves.begin() + static_cast< long >( end ) );
         isAnyGone |= isKept( less );
         end = begin;
      }
      return isAnyGone;
   }

   void takeAwayAll() {
      while ( takeAway( 1 ) ) {
      }
   }

   // `member` becomes as it is in an unchanged world.
   template< typename Member > void simplify( Member World::*member ) {
      Plot simple = plot_;
      simple.world.*member = World().*member;
      if ( simple.world.*member != plot_.world.*member ) {
         isKept( simple );
      }
   }

   void simplifyWorld() {
      simplify( &World::movesBeforeReady );
      simplify( &World::ingressEntries );
      simplify( &World::egressEntries );
      simplify( &World::classIds );
      simplify( &World::hasVniRules );
      simplify( &World::units );
      simplify( &World::variant );
   }

   template< typename Member > void simplify( std::size_t n, Member Move::*member ) {
      Plot simple = plot_;
      simple.moves[ n ].*member = Move().*member;
      if ( simple.moves[ n ].*member != plot_.moves[ n ].*member ) {
         isKept( simple );
      }
   }

   void simplifyMoves() {
      for ( std::size_t n = 0; n < plot_.moves.size(); ++n ) {
         simplify( n, &Move::isWithNext );
         simplify( n, &Move::place );
         simplify( n, &Move::who );
         simplify( n, &Move::number );
      }
   }

   Plot plot_;
   Fails const & fails_;
};

}  // namespace

Plot shorter( Plot plot, Fails const & fails ) {
   return Shortening( std::move( plot ), fails ).run();
}

}  // namespace Moves
