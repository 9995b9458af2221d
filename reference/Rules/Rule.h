// A rule in the chip, and a call that led there, as both stand in a run's document.
//
// A rule has two copies: the staged one, to which calls add, and the written one, which frames meet
// and which is read back. Writing the rule makes the second one equal to the first.
//
// The texts of a rule and of a call hold everything that is compared. An entry's id is not among
// it: the chip chooses it. A call names its rule in place of the id.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <Facts/Device.h>

namespace Reference {

inline constexpr unsigned kExact = 0xffffffff;

// A field of the frame, compared under a mask.
struct Match {
   unsigned data = 0;
   unsigned mask = kExact;

   bool isMetBy( unsigned value ) const { return ( value & mask ) == ( data & mask ); }
};

struct Content {
   // By qualifier. That of a port has another one for the module: "DstPort", "DstPort module".
   std::map< std::string, Match > qualifiers;
   // By action, with its numbers: the ports of an egress mask, a class id. That of a drop does not
   // show.
   std::map< std::string, std::set< unsigned > > actions;
   std::optional< unsigned > priority;  // nothing: the group's default
};

struct Rule {
   unsigned unit = 0;
   Group group = Group::ingress;
   std::string name;
   Content staged{};
   std::optional< Content > written{};  // no frame meets a rule without it
   unsigned entry = 0;                  // its number on the unit; not compared

   // What it shows: the written copy, or the staged one where there is no other.
   Content const & content() const { return written ? *written : staged; }
   // "unit 0 ingress 'Mark or ...': SrcVxlanGport 0x56000002 ... -> EgressMask 3 4, priority 1"
   std::string text() const;
};

struct Call {
   std::string operation;
   unsigned unit = 0;
   std::string rule;                               // its name; empty for entry 0
   std::map< std::string, std::string > values{};  // in decimal; ports with blanks between them
   int code = 0;                                   // the result

   // "getEntry unit 0 'Mark or ...' group=157"
   std::string text() const;
};

// "3 4 10"
std::string textOf( std::set< unsigned > const & numbers );

}  // namespace Reference
