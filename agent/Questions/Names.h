// Names for the numbers in rules, from what is published: the VTEP of a source gport, the interface
// at a port.
#pragma once

#include <map>
#include <string>

#include <Audit/State.h>
#include <Story/VtepNames.h>

namespace Questions {

class Names {
 public:
   explicit Names( Audit::State const & state );

   // As Chip::NameOf: "VTEP 10.0.0.2", "known unicast".
   std::string operator()( Chip::Qualifier qualifier, U32 number ) const {
      return vteps_( qualifier, number );
   }

   // The interface with that port; "unit 0 port 3" without one.
   std::string interfaceAt( VornalTypes::VornalPort const & port ) const;

 private:
   Story::VtepNames vteps_;
   std::map< VornalTypes::VornalPort, std::string > interfaces_;
};

}  // namespace Questions
