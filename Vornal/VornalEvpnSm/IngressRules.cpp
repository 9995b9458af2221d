// The ingress entry of each remote VTEP, and the log message of a full TCAM.
//
// The entry matches frames by the VTEP's VXLAN source port. It is obtained and qualified here; the
// calling variant adds its action and installs it. An entry that could not be obtained leaves
// nothing recorded. It is not retried: the next attempt comes with the VTEP's next change.
//
// The full message is logged on the first failure. Only the class-id variant notices and logs
// recovery (I2EClassId/ClassIdAllocation.cpp); the other one logs full once in the machine's life.

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

// An operation that a variant does not need succeeds.

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

}  // namespace Vornal
