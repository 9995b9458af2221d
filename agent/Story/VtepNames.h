// Names for the numbers in rules: the VTEP of a source gport, and what the chip itself knows.
#pragma once

#include <map>
#include <string>

#include <FieldProcessor/Fields.h>
#include <Story/Event.h>

namespace Story {

// It works as a Chip::NameOf.
class VtepNames {
 public:
   // The VTEP has this virtual port in the chip, whose low 16 bits are its VP index.
   void add( U32 virtualPort, std::string const & vtep );
   // Takes the virtual ports that other agents publish. A gport keeps its name until another VTEP
   // has it: the story tells of rules that outlive their VTEP.
   void onEvent( PublishedChange const & change );

   // "VTEP 10.0.0.2", "known unicast"; an empty text for a number without a name.
   std::string operator()( Chip::Qualifier qualifier, U32 number ) const;

 private:
   std::map< U32, std::string > vteps_;  // by source gport
};

}  // namespace Story
