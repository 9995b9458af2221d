// The variants of local bias, one row each: everything that differs between them for the agent.
//
// The chip's capabilities decide which state machine the plug-in builds. The variant decides the
// rules of a VTEP; all other rules are common to the variants. A further variant is a row here and
// a source file with its rules.
#pragma once

#include <span>
#include <string_view>

#include <Audit/WantedRules.h>

namespace Audit {

struct VariantRow {
   Variant variant;
   std::string_view word;  // in scenarios and reports: "egress-mask"
   // The chip marks frames with class ids, which the central allocator grants. The plug-in reads
   // this from the chip's capabilities.
   bool usesClassIds;
   std::string_view stateMachine;  // the type that the plug-in builds
   // Adds the rules that the VTEP needs on the unit.
   void ( *addVtepRules )( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                           WantedRules & rules );
};

// Every variant once.
std::span< VariantRow const > variantRows();

VariantRow const & rowOf( Variant variant );
// The variant for a chip with or without class ids.
Variant variantWith( bool classIds );
// The word for the variant with this type of state machine; without such a variant, the type
// itself.
std::string_view wordForStateMachine( std::string_view type );

void addEgressMaskRules( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                         WantedRules & rules );
void addClassIdRules( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                      WantedRules & rules );

}  // namespace Audit
