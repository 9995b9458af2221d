// The variants of local bias, and all that tells them apart for the agent: one row each.
//
// The chip's capabilities decide which state machine the plug-in builds. From then on the rules of
// a VTEP are the variant's business; everything else that is programmed is common to all of them. A
// further variant is a row here and a source file with its rules.
#pragma once

#include <span>
#include <string_view>

#include <Audit/WantedRules.h>

namespace Audit {

struct VariantRow {
   Variant variant;
   std::string_view word;  // in scenarios and reports: "egress-mask"
   // The chip marks frames with class ids, which the central allocator grants. The chip's
   // capabilities say so, and the plug-in goes by them.
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
// The word for the variant whose state machine is of that type; the type itself where none is.
std::string_view wordForStateMachine( std::string_view type );

void addEgressMaskRules( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                         WantedRules & rules );
void addClassIdRules( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                      WantedRules & rules );

}  // namespace Audit
