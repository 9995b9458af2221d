#include <Audit/Variant.h>

#include <algorithm>
#include <array>

namespace Audit {

namespace {

using VornalCentral::VxlanCapabilities;

constexpr auto kRows = std::to_array< VariantRow >( {
   { .variant = Variant::egressMask,
     .word = "egress-mask",
     .capability = nullptr,
     .capabilityIs = nullptr,
     .usesClassIds = false,
     .stateMachine = "Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm",
     .addVtepRules = addEgressMaskRules },
   { .variant = Variant::classId,
     .word = "class-id",
     .capability = &VxlanCapabilities::i2eClassIdSupported,
     .capabilityIs = &VxlanCapabilities::i2eClassIdSupportedIs,
     .usesClassIds = true,
     .stateMachine = "Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm",
     .addVtepRules = addClassIdRules },
} );

}  // namespace

std::span< VariantRow const > variantRows() {
   return kRows;
}

VariantRow const & rowOf( Variant variant ) {
   return *std::ranges::find( kRows, variant, &VariantRow::variant );
}

Variant variantWith( VxlanCapabilities const & capabilities ) {
   auto const isSupported = [ & ]( VariantRow const & row ) {
      return row.capability && ( capabilities.*row.capability )();
   };
   auto const * const row = std::ranges::find_if( kRows, isSupported );
   return row == kRows.end() ? Variant::egressMask : row->variant;
}

void publishCapabilities( Variant variant, VxlanCapabilities & capabilities ) {
   for ( VariantRow const & row : kRows ) {
      if ( row.capabilityIs ) {
         ( capabilities.*row.capabilityIs )( row.variant == variant );
      }
   }
}

std::string_view wordForStateMachine( std::string_view type ) {
   auto const * const row = std::ranges::find( kRows, type, &VariantRow::stateMachine );
   return row == kRows.end() ? type : row->word;
}

}  // namespace Audit
