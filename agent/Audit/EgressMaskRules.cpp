#include <Audit/SharedSegments.h>
#include <Audit/Variant.h>

namespace Audit {

// The ingress rule masks the unit's ports of the shared segments. A port beyond the end of masks is
// in none.
void addEgressMaskRules( State const & state, U16 unit, Pelk::IpGenAddr const & vtep,
                         WantedRules & rules ) {
   WantedRule rule = ingressRuleOf( state, unit, vtep );
   auto & mask = rule.content[ Chip::Action::EgressMask ].emplace();
   for ( VornalTypes::VornalPort const & port : sharedPorts( state, unit, vtep ) ) {
      if ( port.logicalPort() < Brum::PerUnitBitmap::kBits ) {
         mask.ports.bitSet( port.logicalPort() );
      }
   }
   rules[ { unit, Purpose::vtep, vtep } ] = std::move( rule );
}

}  // namespace Audit
