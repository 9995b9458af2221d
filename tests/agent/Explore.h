// A small switch and its events, for the tests of `vornal explore`.
#pragma once

#include <gtest/gtest.h>

#include <Exploring/Exploration.h>
#include <Scenario/ReadError.h>
#include <Support.h>

namespace ExploreTest {

using Exploring::Exploration;
using Exploring::Sequence;
using Support::contains;
using Words = std::vector< std::string >;

// The plug-in of the tests stops when a third segment comes.
inline constexpr char kSwitch[] = R"(scenario: leaf
switch:
   name: leaf1
   slice: 3
   variant: egress-mask
   units: { 0: { module: 1 } }
   interfaces:
      Ethernet1: { unit: 0, port: 1 }
      Ethernet2: { unit: 0, port: 22 }
      Ethernet3: { unit: 0, port: 33 }
evpn:
   segments: { Ethernet1: [ 10.0.0.9 ] }
   vteps: { 10.0.0.9: { virtual-port: 9 } }
steps:
   - note: the switch comes up
)";

inline constexpr char kHead[] =
   "exploration: segments\n"
   "based-on: leaf.yaml\n"
   "length: 4\n";
inline constexpr char kAlike[] =
   "alike:\n"
   "   - [ [ Ethernet2, 22 ], [ Ethernet3, 33 ] ]\n";
inline constexpr char kEvents[] =
   "events:\n"
   "   - ready: subagents::l2Ready\n"
   "   - publish: { segments: { Ethernet2: [ 10.0.0.9 ] } }\n"
   "   - publish: { segments: { Ethernet3: [ 10.0.0.9 ] } }\n"
   "   - withdraw: { segments: [ Ethernet2 ] }\n"
   "   - withdraw: { segments: [ Ethernet3 ] }\n";

class Explore : public testing::Test {
 protected:
   Explore() { directory.file( "leaf.yaml", kSwitch ); }

   std::string file( std::string const & text ) const {
      return directory.file( "segments.yaml", text );
   }
   std::string mistakes( std::string const & text ) const {
      try {
         Exploration const exploration( file( text ) );
         return "";
      } catch ( Scenario::ReadError const & error ) {
         return error.what();
      }
   }
   Support::Ran explore( Words words, std::string const & plugin = "segment-rules" ) const {
      words.insert( words.begin(), "explore" );
      words.insert( words.end(), { "--plugin", Support::testPlugin( plugin ) } );
      return Support::vornal( words );
   }

   Support::Directory directory;
   std::string const whole = std::string( kHead ) + kAlike + kEvents;
};

}  // namespace ExploreTest
