#include <Audit/Variant.h>

#include <algorithm>
#include <array>

namespace Audit {

namespace {

constexpr auto kRows = std::to_array< VariantRow >(
   { { Variant::egressMask, "egress-mask", false,
       "Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm", addEgressMaskRules },
     { Variant::classId, "class-id", true, "Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm",
       addClassIdRules } } );

}  // namespace

std::span< VariantRow const > variantRows() {
   return kRows;
}

VariantRow const & rowOf( Variant variant ) {
   return *std::ranges::find( kRows, variant, &VariantRow::variant );
}

Variant variantWith( bool classIds ) {
   return std::ranges::find( kRows, classIds, &VariantRow::usesClassIds )->variant;
}

std::string_view wordForStateMachine( std::string_view type ) {
   auto const * const row = std::ranges::find( kRows, type, &VariantRow::stateMachine );
   return row == kRows.end() ? type : row->word;
}

}  // namespace Audit
