// A rule in the chip, and a call that led there, as the words of both stand in a run's document.
//
// The texts of a rule and of a call hold everything that is compared. An entry's id is not among
// it: the chip chooses it. A call names its rule in place of the id.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <Facts/Device.h>

namespace Reference {

struct Rule {
   unsigned unit = 0;
   Group group = Group::ingress;
   std::string name;
   bool isWritten = false;                             // no frame meets a rule that is not
   std::map< std::string, std::string > qualifiers{};  // "PacketRes": "4 under 0xff"
   std::map< std::string, std::string > actions{};     // "EgressMask": "3 4"
   std::string priority = "default";

   // "unit 0 ingress 'Mark or ...': SrcVxlanGport 0x56000002 ... -> EgressMask 3 4, priority 1"
   std::string text() const;
};

struct Call {
   std::string operation;
   unsigned unit = 0;
   std::string rule;                               // its name; empty for entry 0
   std::map< std::string, std::string > values{};  // in decimal; ports with blanks between them

   // "getEntry unit 0 'Mark or ...' group=157"
   std::string text() const;
};

// "4 under 255"
std::string under( unsigned long data, unsigned long mask );

inline constexpr unsigned kExact = 0xffffffff;

}  // namespace Reference
