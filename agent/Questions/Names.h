// Names for the numbers in rules, from what is published: the VTEP of a source gport, the interface
// at a port.
#pragma once

#include <map>
#include <string>

#include <Audit/State.h>
#include <FieldProcessor/Fields.h>

namespace Questions {

class Names {
 public:
   explicit Names( Audit::State const & state );

   // As Chip::NameOf: "VTEP 10.0.0.2", "known unicast".
   std::string operator()( Chip::Qualifier qualifier, U32 number ) const;

   // The interface with that port; "unit 0 port 3" without one.
   std::string interfaceAt( VornalTypes::VornalPort const & port ) const;

 private:
   std::map< U32, std::string > vteps_;  // by source gport
   std::map< VornalTypes::VornalPort, std::string > interfaces_;
};

}  // namespace Questions
