// Derives the shared segments of each remote VTEP from the segment status.
//
// The segment status says, per segment interface, which remote VTEPs are attached; the directory
// says, per remote VTEP, which interfaces are shared with it. Its readers rely on the order of the
// changes:
//
// - a VTEP's segment entity is filled before it enters the directory, with every interface that is
//   shared with the VTEP at that moment;
// - an interface that is no longer shared leaves the set first, and the last one takes the entity
//   out of the directory after that;
// - an entity in the directory is never replaced by another.
//
// While its notifications are active the directory is in sync. Switching them on first brings it in
// sync. Switching them off, and destroying this object, leaves the directory as it is. Out of
// service it derives as little as when it is switched off. Without a status or a directory nothing
// is derived.
//
// The bridging capabilities and the LAG mapping are held and not read. A segment's interface is
// shared as it is configured: a port channel, not its members.
//
// Cost: proportional to the changed segment's VTEPs. Threads: the activity's.
#pragma once

#include <map>
#include <memory>

#include <Bridging/HwCapabilities.h>
#include <Evpn/EvpnStatus.h>
#include <Kiv/Derivation.h>
#include <Lag/Config.h>
#include <Oxa/EvpnTepSegmentDir.h>

namespace Oxa {

class OxaEvpnTepSegmentSm : public Kiv::Derivation {
   KIV_ENTITY( OxaEvpnTepSegmentSm, Kiv::Entity )
   KIV_HELD( evpnStatus, Evpn::EvpnStatus const )
   KIV_HELD( tepSegmentDir, EvpnTepSegmentDir )
   KIV_HELD( bridgingHwCapabilities, Bridging::HwCapabilities const )
   KIV_HELD( lagPhyIntfMapping, Lag::LagPhyIntfMapping const )

   OxaEvpnTepSegmentSm( Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
                        Quelm::Ptr< EvpnTepSegmentDir > const & tepSegmentDir,
                        Quelm::Ptr< Bridging::HwCapabilities const > const & bridgingHwCapabilities,
                        Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping );
   ~OxaEvpnTepSegmentSm() override;

   // Builds one; the caller switches its notifications on.
   static Quelm::Ptr< OxaEvpnTepSegmentSm > OxaEvpnTepSegmentSmIs(
      Quelm::Ptr< Evpn::EvpnStatus const > const & evpnStatus,
      Quelm::Ptr< EvpnTepSegmentDir > const & tepSegmentDir,
      Quelm::Ptr< Bridging::HwCapabilities const > const & bridgingHwCapabilities,
      Quelm::Ptr< Lag::LagPhyIntfMapping const > const & lagPhyIntfMapping );

 private:
   void handleDerivingBegins() override;
   void handleDerivingEnds() override;
   void handleSegments();
   void handleSegment( Kiv::Change const & change );
   void segmentNew( Quelm::Ptr< Evpn::EthernetSegmentStatus const > const & segment );
   void segmentGone( Evpn::EthernetSegmentStatus const & segment );
   void handleRemoteTep( Pelk::IntfId const & intfId, Pelk::IpGenAddr const & tepIp );
   bool isShared( Pelk::IntfId const & intfId, Pelk::IpGenAddr const & tepIp ) const;
   void enter( Pelk::IpGenAddr const & tepIp );
   void leave( Pelk::IpGenAddr const & tepIp, Pelk::IntfId const & intfId );

   Kiv::Watch< Evpn::EvpnStatus > statusWatch_{
      evpnStatus(),
      Kiv::onChange( Evpn::EvpnStatus::segmentStatusAttr(), this, &KivSelf::handleSegment )
   };
   std::map< Pelk::IntfId, std::unique_ptr< Kiv::Watch< Evpn::EthernetSegmentStatus > > > segment_;
};

}  // namespace Oxa
