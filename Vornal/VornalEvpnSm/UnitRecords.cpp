// The record of each unit: when it comes, when it goes, and whether a unit still needs it.
//
// A unit's first rule brings its record and, before that, its unicast exemption rules. Its last
// rule takes the record along, and after that the exemption rules.

#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

void EvpnMultihomingLocalBiasSm::ensureUnitRecord( U16 unit ) {
   if ( !tepIpToEntryHas( unit ) ) {
      installRulesForUcastTraffic( unit );
      tepIpToEntryIs( unit );
   }
}

void EvpnMultihomingLocalBiasSm::forgetVpIndex( U16 unit, Pelk::IpGenAddr const & tepIp ) {
   if ( auto const record = tepIpToEntry( unit ) ) {
      record->vpIndexDel( tepIp );
   }
   if ( !unitUsesOrNeedsTcams( unit ) ) {
      tepIpToEntryDel( unit );
      removeRulesForUcastTraffic( unit );
   }
}

bool EvpnMultihomingLocalBiasSm::unitUsesTcamsForTepIp( U32 unit,
                                                        Pelk::IpGenAddr const & tepIp ) const {
   TRACE( smTrace, 5, "unitUsesTcamsForTepIp unit: " << unit << " tepIp: " << tepIp );
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   if ( !unitTepIpToEntry ) {
      return false;
   }
   bool const ifpTcamsUsed = unitTepIpToEntry->entryIdHas( tepIp );
   TRACE( smTrace, 4, "unitUsesTcamsForTepIp ifpTcamsUsed: " << ifpTcamsUsed );
   return ifpTcamsUsed;
}

bool EvpnMultihomingLocalBiasSm::unitUsesOrNeedsTcams( U32 unit ) {
   TRACE( smTrace, 5, "unitUsesOrNeedsTcams unit: " << unit );
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   if ( !unitTepIpToEntry ) {
      return false;
   }
   bool const ifpTcamsUsed = unitTepIpToEntry->entryIds() != 0;
   TRACE( smTrace, 4, "unitUsesOrNeedsTcams ifpTcamsUsed: " << ifpTcamsUsed );
   return ifpTcamsUsed;
}

}  // namespace Vornal
