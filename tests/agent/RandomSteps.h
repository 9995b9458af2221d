// A long random story around a short one, for tests that look for the short one again.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace Random {

// Steps that a switch takes without a stop, the same for the same seed: VTEPs come, get another
// virtual port, join segments, leave them and go.
class Steps {
 public:
   explicit Steps( std::uint32_t seed ) : random_( seed ) {}

   std::string next() {
      int const vtep = number( 11, 18 );
      switch ( number( 0, 5 ) ) {
      case 0: return "note: nothing happens";
      case 1: return "expect: { log: { text: no such line, times: 0 } }";
      case 2: return vteps_.contains( vtep ) ? withdrawn( vtep ) : published( vtep );
      case 3: return published( vtep );
      default: return changedSegment( "Ethernet" + std::to_string( number( 1, 2 ) ), vtep );
      }
   }

 private:
   int number( int first, int last ) {
      return std::uniform_int_distribution< int >( first, last )( random_ );
   }
   static std::string address( int vtep ) { return "10.0.0." + std::to_string( vtep ); }

   std::string published( int vtep ) {
      vteps_.insert( vtep );
      return "publish: { vteps: { " + address( vtep ) +
             ": { virtual-port: " + std::to_string( ++lastPort_ ) + " } } }";
   }
   std::string withdrawn( int vtep ) {
      vteps_.erase( vtep );
      return "withdraw: { vteps: [ " + address( vtep ) + " ] }";
   }
   std::string changedSegment( std::string const & intf, int vtep ) {
      auto & members = segments_[ intf ];
      bool const isIn = members.contains( vtep );
      if ( isIn ) {
         members.erase( vtep );
      } else {
         members.insert( vtep );
      }
      return std::string( isIn ? "withdraw" : "publish" ) + ": { segments: { " + intf + ": [ " +
             address( vtep ) + " ] } }";
   }

   std::mt19937 random_;
   int lastPort_ = 100;
   std::set< int > vteps_;
   std::map< std::string, std::set< int > > segments_;
};

// `count` steps: those of the story in their order among random ones, its last one last. The seed
// must leave the story as it is.
inline std::vector< std::string > around( std::vector< std::string > const & story,
                                          std::size_t count, std::uint32_t seed ) {
   Steps random( seed );
   std::mt19937 places( seed );
   std::vector< std::size_t > at( count - 1 );
   for ( std::size_t n = 0; n < at.size(); ++n ) {
      at[ n ] = n;
   }
   std::shuffle( at.begin(), at.end(), places );
   at.resize( story.size() - 1 );
   std::sort( at.begin(), at.end() );
   std::vector< std::string > steps;
   std::size_t told = 0;
   for ( std::size_t n = 0; n + 1 < count; ++n ) {
      bool const isOfStory = told < at.size() && at[ told ] == n;
      steps.push_back( isOfStory ? story[ told++ ] : random.next() );
   }
   steps.push_back( story.back() );
   return steps;
}

}  // namespace Random
