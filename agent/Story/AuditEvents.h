// Events of audits of the rules (Audit/Audit.h).
#pragma once

#include <string>
#include <variant>
#include <vector>

#include <Story/Difference.h>

namespace Story {

class Document;

// An audit was made.
struct Audited {
   static constexpr char const * kName = "audited";
   U32 rules = 0;    // expected
   U32 entries = 0;  // in the chip
   std::vector< Difference > differences;
   std::vector< std::string > unprotected{};  // VTEPs that lack a rule

   static void fields( auto & event, auto && field ) {
      field( "rules", event.rules );
      field( "entries", event.entries );
      field( "differences", event.differences );
      field( "unprotected", event.unprotected );
   }
   void addTo( Document & document ) const;
};

using AuditEvents = std::variant< Audited >;

}  // namespace Story
