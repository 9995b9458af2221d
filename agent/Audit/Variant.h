// The variants of local bias, one row each: everything that differs between them for the agent.
//
// The chip's capabilities decide which state machine the plug-in builds. The variant decides the
// rules of a VTEP; all other rules are common to the variants. A further variant is a row in
// Variant.cpp and a source file with its rules.
#pragma once

#include <span>
#include <string_view>

#include <Audit/WantedRules.h>
#include <VornalCentral/Capabilities.h>

namespace Audit {

struct VariantRow {
   Variant variant;
   std::string_view word;  // in scenarios and reports: "egress-mask"
   // The capability by which the plug-in chooses the variant: its value, and the operation that
   // publishes it. Null for the variant of a chip without any.
   bool ( VornalCentral::VxlanCapabilities::*capability )() const;
   void ( VornalCentral::VxlanCapabilities::*capabilityIs )( bool const & );
   // The plug-in asks the central allocator for a class id for each VTEP.
   bool usesClassIds;
   std::string_view stateMachine;  // the type that the plug-in builds
   // Adds the rules that the VTEP needs on the unit.
   void ( *addVtepRules )( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                           WantedRules & rules );
};

// Every variant once.
std::span< VariantRow const > variantRows();

VariantRow const & rowOf( Variant variant );
// The variant of a chip with these capabilities, by default egress-mask; and the capabilities of
// a variant's chip.
Variant variantWith( VornalCentral::VxlanCapabilities const & capabilities );
void publishCapabilities( Variant variant, VornalCentral::VxlanCapabilities & capabilities );
// The word for the variant with this type of state machine; without such a variant, the type
// itself.
std::string_view wordForStateMachine( std::string_view type );

void addEgressMaskRules( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                         WantedRules & rules );
void addClassIdRules( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                      WantedRules & rules );

}  // namespace Audit
