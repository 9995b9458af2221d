// The parts of a scenario that could not be read, and the checks that this has prevented.
//
// A check of the whole scenario compares a part with another: an interface that is named with those
// that are defined. Where a mistake hides a part of the definitions, the check would report values
// that are right. So each check asks judges() before it reports a problem, and reports nothing when
// a mistake stands in the way.
//
// A part is a mapping of the language ("switch"), or a word of one ("switch/interfaces").
// Scenario/Words.h notes the parts while it reads; a source that reads keys notes those.
#pragma once

#include <set>
#include <string>
#include <vector>

#include <Quelm/Integers.h>

namespace Scenario {

// What a check compares with.
enum class Ground : U8 {
   interfaces,      // the interfaces that are defined
   portChannels,    // the port channels that are defined
   units,           // the switch's units
   vlans,           // the VLANs with a VNI
   accessVlans,     // the interfaces that carry VLANs
   vtepAddresses,   // the switch's own VTEP addresses
   leavingMembers,  // the members that leave their port channel in a step
   traceLevels,     // the levels that are on
   forwarding,      // whether the switch forwards frames
   published,       // the published state, from step to step
};

class Doubts {
 public:
   // The part is not there, or nobody can tell which one it is.
   void isLost( std::string const & part ) { lost_.insert( part ); }
   // The part holds a mistake; the rest of it has been read.
   void isFlawed( std::string const & part ) { flawed_.insert( part ); }

   // Something of the part is lost, or a mistake stands in it.
   bool has( std::string const & part ) const {
      return lost_.contains( part ) || flawed_.contains( part );
   }

   // A check against this ground can be made. Otherwise the check counts as left out.
   bool judges( Ground ground );

   // The check is left out from some place on.
   void leavesOut( Ground ground ) { leftOut_.insert( ground ); }

   // The checks that were left out, in words, each once: "whether each interface is defined".
   std::vector< std::string > leftOut() const;

 private:
   std::set< std::string > lost_;
   std::set< std::string > flawed_;
   std::set< Ground > leftOut_;
};

// Names of parts that are no words of the language.
inline constexpr char const * kNamesOfInterfaces = "names of interfaces";
inline constexpr char const * kNamesOfPortChannels = "names of port channels";
inline constexpr char const * kNumbersOfUnits = "numbers of units";
inline constexpr char const * kNumbersOfVlans = "numbers of VLANs";

}  // namespace Scenario
