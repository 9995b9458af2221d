// The ingress entry of each remote VTEP, what happens when the TCAM is full, and the retry.
//
// The entry matches frames by the VTEP's VXLAN source port. It is obtained and qualified here; the
// variant that called adds its action and installs it. An entry that could not be obtained leaves
// nothing recorded and is asked for again only when the VTEP is; what is queued and retried are the
// per-VNI rules (PerVniMulticast.cpp).
//
// The full message is logged on the first failure. Recovery is noticed, and logged, by the class-id
// variant alone; in the other one the full message appears once in the machine's life.

#include <Kiv/Activity.h>
#include <Kiv/OrEmpty.h>
#include <Shim/FieldCall.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

using Kiv::orEmpty;

namespace {

constexpr char const * kIfpEntryName =
   "Mark or drop packets at IFP from vtep IP %s on shared segments";

// Below the per-VNI exemption rules, which are to win.
constexpr U32 kIfpEntryPriority = 1;

}  // namespace

// The part that both variants share: obtains and qualifies the entry, or releases it.
bool EvpnMultihomingLocalBiasSm::ifpTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp,
                                                 bool add ) {
   TRACE( smTrace, 5, "ifpTcamEntries, unit: " << unit << ", tepIp: " << tepIp << ", add " << add );
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   if ( !add ) {
      releaseIfpEntry( unit, tepIp, *unitTepIpToEntry );
      return true;
   }
   U32 const gport = gportOf( tepIp );
   U32 const entryId =
      tcamManager()->getEntry( unit, Quelm::formatted( kIfpEntryName, { tepIp.stringValue() } ),
                               VornalTcam::RequestKey() );
   if ( entryId == 0 ) {
      TRACE( smTrace, 2, "ifpTcamEntries failed to allocate IFP entry ID" );
      return false;
   }
   TRACE( smTrace, 4, "ifpTcamEntries allocated IFP entry ID " << entryId );
   SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, entryId, gport ) );
   unitTepIpToEntry->entryIdIs( tepIp, entryId );
   if ( NestedSm_VtiStatus::toggleSbdEvpnTcamOverrideRuleEnabled() ) {
      tcamManager()->setPriorityForEntry( unit, entryId, kIfpEntryPriority );
   }
   return true;
}

void EvpnMultihomingLocalBiasSm::releaseIfpEntry( U32 unit, Pelk::IpGenAddr const & tepIp,
                                                  TepIpToEntry & unitTepIpToEntry ) {
   if ( !unitTepIpToEntry.entryIdHas( tepIp ) ) {
      return;
   }
   U32 const entryId = unitTepIpToEntry.entryId( tepIp );
   tcamManager()->releaseEntry( unit, entryId );
   TRACE( smTrace, 4, "ifpTcamEntries freed IFP entry ID " << entryId );
   unitTepIpToEntry.entryIdDel( tepIp );
}

U32 EvpnMultihomingLocalBiasSm::gportOf( Pelk::IpGenAddr const & tepIp ) const {
   return Shim::sdk_->vxlanGport( vpIndexOf( VornalCentral::getRemoteVtepKeyForIp( tepIp ) ) );
}

bool EvpnMultihomingLocalBiasSm::addTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "addTcamEntries, unit: " << unit << ", tepIp: " << tepIp );
   auto const unitTepIpToEntry = tepIpToEntry( unit );
   QUELM_ASSERT( !unitTepIpToEntry->entryIdHas( tepIp ) );
   QUELM_ASSERT( !unitTepIpToEntry->esPbmpHas( tepIp ) );
   QUELM_ASSERT( !unitTepIpToEntry->esPortAndEFPEntryIdListHas( tepIp ) );
   bool const isAdded = ifpTcamEntries( unit, tepIp, true );
   if ( !isAdded && !tcamExhaustion() ) {
      multihomingTcamResourceFull.log();
      tcamExhaustionIs( true );
   }
   return isAdded;
}

bool EvpnMultihomingLocalBiasSm::deleteTcamEntries( U32 unit, Pelk::IpGenAddr const & tepIp ) {
   TRACE( smTrace, 5, "deleteTcamEntries, unit: " << unit << ", tepIp: " << tepIp );
   return ifpTcamEntries( unit, tepIp, false );
}

// What a variant does not need, succeeds.

bool EvpnMultihomingLocalBiasSm::efpTcamEntries( U32, Pelk::IpGenAddr const &,
                                                 VornalTypes::VornalPortList const &, bool ) {
   return true;
}

bool EvpnMultihomingLocalBiasSm::updateIfpTcamEntries( U32, Pelk::IpGenAddr const &,
                                                       VornalTypes::VornalPortList const &,
                                                       VornalTypes::VornalPortList const &, bool ) {
   return true;
}

bool EvpnMultihomingLocalBiasSm::updateEfpTcamEntries( U32, Pelk::IpGenAddr const &,
                                                       VornalTypes::VornalPortList const &,
                                                       VornalTypes::VornalPortList const &, bool ) {
   return true;
}

void EvpnMultihomingLocalBiasSm::updateTcamEntries( U32, Pelk::IpGenAddr const &,
                                                    Pelk::IntfId const &, bool ) {}

void EvpnMultihomingLocalBiasSm::handleTcamExhaustion() {
   if ( !initialized() ) {
      TRACE( smTrace, 2, "handleTcamExhaustion, SM not initialized yet" );
      return;
   }
   TRACE( smTrace, 5, "handleTcamExhaustion" );
   for ( auto iter = orEmpty( vcsd() ).vornalModIdIter(); iter; ++iter ) {
      if ( !tcamManager() || !tcamManager()->exhausted( iter.key() ) ) {
         kivClock().timeMinIs( Kiv::System::currentTime() );
         return;
      }
   }
}

void EvpnMultihomingLocalBiasSm::handleTime() {
   TRACE( smTrace, 8, "void Vornal::EvpnMultihomingLocalBiasSm::handleTime()" );
   if ( !initialized() ) {
      TRACE( smTrace, 2, "handleTime, SM not initialized yet" );
      return;
   }
   for ( auto rule = unprogrammedTcamRulesListIter(); rule; ++rule ) {
      L3::VrfName const vrfName = rule.key();
      U32 const newVni = rule.value();
      for ( auto sm = vtiStatusIter(); sm; ++sm ) {
         TRACE( smTrace, 5,
                "handleTime vrfName: " << vrfName.stringValue() << " newVni: " << newVni );
         unprogrammedTcamRulesListDel( vrfName );
         sm.value()->handleVrfToVniMap( vrfName, 0, newVni );
      }
   }
}

}  // namespace Vornal
