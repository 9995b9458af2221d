// Writes random stories as scenarios, so that every fault can be tried in them.
//
// usage: soak-stories SEED COUNT FOLDER
//
// The stories are those of tests/reference/Moves.h, without faults of their own, and without the
// frames that only look: a fault shows in calls and rules. One seed makes the same files on every
// machine.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <random>
#include <stdexcept>
#include <string>

#include <Moves.h>

#include <fmt/format.h>

namespace {

using Moves::Move;
using Moves::World;

class Author {
 public:
   explicit Author( std::uint64_t seed ) : numbers_( seed ) {}

   std::string story() {
      World const world = anyWorld();
      Moves::Story const story = storyOf( world, anyMoves() );
      return story.upTo( story.steps.size() );
   }

 private:
   // std::uniform_int_distribution gives other numbers with another library.
   unsigned below( unsigned end ) { return static_cast< unsigned >( numbers_() % end ); }

   // Half of the groups have room for everything.
   unsigned anyRoom( unsigned least ) {
      constexpr unsigned kAmple = 64;
      constexpr unsigned kSizes = 8;
      unsigned const n = below( 2 * kSizes );
      return n < kSizes ? kAmple : least + n - kSizes;
   }

   // Half of the switches are calm: they have one unit, and room for everything.
   World anyWorld() {
      World world;
      world.hasFaults = false;
      world.isCalm = below( 2 ) == 0;
      world.variant = below( 2 ) == 0 ? "egress-mask" : "class-id";
      if ( !world.isCalm ) {
         world.units = 1 + below( 2 );
         world.ingressEntries = anyRoom( 2 );
         world.egressEntries = anyRoom( 0 );
         world.classIds = 1 + below( 4 );
         world.hasVniRules = below( world.units == 1 ? 6 : 2 ) == 0;
      }
      world.movesBeforeReady = below( 12 );
      return world;
   }

   // A story lacks about half of the kinds, and has the others more often.
   std::vector< Move > anyMoves() {
      constexpr unsigned kFew = 12;
      constexpr unsigned kMost = 40;
      std::vector< unsigned > kinds{ 0 };
      for ( unsigned kind = 1; kind < Moves::kKinds; ++kind ) {
         if ( below( 2 ) == 0 ) {
            kinds.push_back( kind );
         }
      }
      std::vector< Move > moves( 4 + below( kMost ) );
      for ( Move & move : moves ) {
         move.kind = kinds[ below( static_cast< unsigned >( kinds.size() ) ) ];
         move.place = below( kFew );
         move.who = below( kFew );
         move.number = below( kFew );
         move.isWithNext = below( 8 ) == 0;
      }
      return moves;
   }

   std::mt19937_64 numbers_;
};

void write( std::filesystem::path const & file, std::string const & text ) {
   std::ofstream out( file );
   out << text;
   if ( !out.flush() ) {
      throw std::runtime_error( file.string() + ": cannot be written; give a folder that exists" );
   }
}

}  // namespace

int main( int argc, char ** argv ) {
   if ( argc != 4 ) {
      std::cerr << "usage: soak-stories SEED COUNT FOLDER\n";
      return EXIT_FAILURE;
   }
   try {
      Author author( std::stoull( argv[ 1 ] ) );
      unsigned long const count = std::stoul( argv[ 2 ] );
      for ( unsigned long n = 1; n <= count; ++n ) {
         write( std::filesystem::path( argv[ 3 ] ) / fmt::format( "story-{}.yaml", n ),
                author.story() );
      }
   } catch ( std::exception const & error ) {
      std::cerr << "soak-stories: " << error.what() << '\n';
      return EXIT_FAILURE;
   }
   return EXIT_SUCCESS;
}
