// Scenarios as texts, for tests of the language.
#pragma once

#include <string>

#include <Steps/Reader.h>

namespace ScenarioTexts {

// The step of a model, which must be of that kind.
template< typename Kind > Kind const & stepOf( Scenario::Model const & model, std::size_t n = 0 ) {
   return dynamic_cast< Kind const & >( *model.steps.at( n ).action );
}

// A switch with two interfaces and a port channel, in lines 1 to 8. What a test adds begins at
// line 9.
inline std::string const kLeaf =
   "scenario: two leaves\n"
   "switch:\n"
   "   name: leaf1\n"
   "   variant: egress-mask\n"
   "   units: { 0: { module: 1 } }\n"
   "   interfaces: { Ethernet1: { unit: 0, port: 1 },\n"
   "                 Ethernet2: { unit: 0, port: 2 } }\n"
   "   port-channels: { Port-Channel2: [ Ethernet2 ] }\n";

// The same with everything published that can be, in as many lines.
inline std::string const kPublished =
   "scenario: two leaves\n"
   "evpn: { vteps: { 10.0.0.2: { virtual-port: 2 }, '2001:db8::2': { virtual-port: 3 } },\n"
   "        segments: { Ethernet1: [], Port-Channel2: [ 10.0.0.2 ] },\n"
   "        tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 1, blue: 2 } } } }\n"
   "switch: { name: leaf1, variant: egress-mask, units: { 0: { module: 1 } },\n"
   "          interfaces: { Ethernet1: { unit: 0, port: 1 },\n"
   "                        Ethernet2: { unit: 0, port: 2 } },\n"
   "          port-channels: { Port-Channel2: [ Ethernet2 ] } }\n";

inline Scenario::Model read( std::string const & text ) {
   return Steps::readScenarioText( text, "leaf.yaml" );
}

// The switch above with `more` from line 9 on.
inline Scenario::Model readLeaf( std::string const & more ) {
   return read( kLeaf + more );
}

// What the reader says to a text that it refuses; empty when it does not.
inline std::string problems( std::string const & text ) {
   try {
      read( text );
   } catch ( Scenario::ReadError const & error ) {
      return error.what();
   }
   return {};
}

inline std::string leafProblems( std::string const & more ) {
   return problems( kLeaf + more );
}

}  // namespace ScenarioTexts
