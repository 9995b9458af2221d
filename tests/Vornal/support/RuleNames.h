// The names under which the machine obtains the entries of its rules.
#pragma once

#include <string>

#include <Quelm/Integers.h>

namespace Support {

inline std::string l2RuleName() {
   return "Skip shared ES pruning for L2UC packets - No-op";
}
inline std::string l3RuleName() {
   return "Skip shared ES pruning for L3UC packets - No-op";
}
inline std::string vniRuleName( U32 vni ) {
   return "Skip shared ES pruning for packets with vni " + std::to_string( vni ) + " - No-op";
}
inline std::string vtepRuleName( std::string const & address ) {
   return "Mark or drop packets at IFP from vtep IP " + address + " on shared segments";
}
inline std::string dropRuleName( std::string const & address, std::string const & interface ) {
   return "Drop packets at EFP from vtep IP " + address + " on " + interface;
}

// The request for an entry of that name, as a recorded call has it.
inline std::string ingressRequest( std::string const & name ) {
   return "getEntry( group 157, name \"" + name + "\" )";
}
inline std::string egressRequest( std::string const & name ) {
   return "getEntry( group 45, name \"" + name + "\" )";
}

}  // namespace Support
