// The key under which an agent can ask for a TCAM entry it has asked for before.
#pragma once

#include <string>

#include <Quelm/Fields.h>

namespace VornalTcam {

// A default-built key is empty: the request is for a new entry, told apart by its id alone.
class RequestKey : public Quelm::Value {
   QUELM_VALUE( RequestKey, "VornalTcam::RequestKey" )
   QUELM_FIELD( owner, std::string )
   QUELM_FIELD( number, U32 )
   QUELM_FIELD( detail, std::string )

   friend bool operator==( RequestKey const &, RequestKey const & ) = default;
};

}  // namespace VornalTcam
