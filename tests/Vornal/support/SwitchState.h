// A switch with a real software chip and the state that the local-bias machine reads, published by
// real derivations. Nothing is on it at first but its units.
//
// It has no machine and watches nothing, so that benchmarks can measure on it; LocalBiasSwitch.h is
// what tests use.
#pragma once

#include <string>
#include <vector>

#include <Board/Board.h>
#include <Evpn/EvpnStatus.h>
#include <Kiv/Activity.h>
#include <Lag/LagPhyIntfMappingSm.h>
#include <Oxa/OxaEvpnTepSegmentSm.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/I2EClassIdIndex.h>
#include <VornalCentral/VpIndexStatus.h>
#include <Vxlan/VtiStatusDir.h>

namespace Support {

inline Pelk::IntfId intf( std::string const & name ) {
   return Pelk::IntfId::fromString( name );
}
inline Pelk::IpGenAddr ip( std::string const & address ) {
   return Pelk::IpGenAddr::fromString( address );
}
inline VornalCentral::RemoteVtepKey vtep( std::string const & address ) {
   return VornalCentral::getRemoteVtepKeyForIp( ip( address ) );
}

class SwitchState {
 public:
   explicit SwitchState( Chip::BoardConfig const & config, Chip::CallObserver * observer = nullptr )
         : board( config, observer ) {
      for ( Chip::UnitConfig const & unit : config.units ) {
         vcsd->vornalModIdIs( unit.number, unit.modId );
      }
      lagSm->hasNotificationActiveIs( true );
      segmentSm->hasNotificationActiveIs( true );
   }
   SwitchState( SwitchState const & ) = delete;
   SwitchState & operator=( SwitchState const & ) = delete;
   ~SwitchState() = default;

   // --- What other agents publish
   void interfaceIs( std::string const & name, U16 unit, U16 logicalPort ) {
      U16 const modId = board.units().unit( unit )->modId();
      vcsd->intfPortIs( intf( name ), VornalTypes::VornalPort( unit, logicalPort, modId ) );
   }
   void interfaceDel( std::string const & name ) { vcsd->intfPortDel( intf( name ) ); }
   void memberIs( std::string const & lag, std::string const & name ) {
      auto const config = Quelm::make< Lag::EthPhyIntfLagConfig >( intf( name ) );
      config->lagIs( intf( lag ) );
      lagConfig->phyIntfIs( config );
   }
   void memberDel( std::string const & name ) { lagConfig->phyIntfDel( intf( name ) ); }
   void segmentIs( std::string const & name, std::vector< std::string > const & vteps ) {
      auto const segment = evpnStatus->segmentStatusIs( intf( name ) );
      for ( std::string const & address : vteps ) {
         segment->remoteTepIs( ip( address ) );
      }
   }
   void segmentDel( std::string const & name ) { evpnStatus->segmentStatusDel( intf( name ) ); }
   void vtepIs( std::string const & address, U32 virtualPort ) {
      vpIndexStatus->remoteVportIs( vtep( address ), virtualPort );
   }
   void vtepDel( std::string const & address ) { vpIndexStatus->remoteVportDel( vtep( address ) ); }
   void classIdIs( std::string const & address, U16 classId ) {
      classIdStatus->remoteESPeerVtepIs( ip( address ), VornalCommon::ClassId( classId ) );
   }

   Kiv::ActivityManager activity;
   Chip::Board board;
   Quelm::Ptr< Vornal::VornalCommonSmData > vcsd =
      Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   Quelm::Ptr< Oxa::EvpnTepSegmentDir > dir = Oxa::evpnTepSegmentDirFactory( "segments" );
   Quelm::Ptr< VornalCentral::VpIndexStatus > vpIndexStatus =
      Quelm::make< VornalCentral::VpIndexStatus >( "vp" );
   Quelm::Ptr< Evpn::EvpnStatus > evpnStatus = Quelm::make< Evpn::EvpnStatus >( "evpn" );
   Quelm::Ptr< Vxlan::VtiStatusDir > vtiStatusDir = Quelm::make< Vxlan::VtiStatusDir >( "vti" );
   Quelm::Ptr< Lag::Config > lagConfig = Quelm::make< Lag::Config >( "lag" );
   Quelm::Ptr< Lag::LagPhyIntfMapping > lagMapping =
      Quelm::make< Lag::LagPhyIntfMapping >( "lagToMembers" );
   Quelm::Ptr< VornalCentral::I2EClassIdIndexConfig > classIdConfig =
      Quelm::make< VornalCentral::I2EClassIdIndexConfig >( "requests" );
   Quelm::Ptr< VornalCentral::I2EClassIdIndexStatus > classIdStatus =
      Quelm::make< VornalCentral::I2EClassIdIndexStatus >( "grants" );
   Quelm::Ptr< Lag::LagPhyIntfMappingSm > lagSm =
      Lag::LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( lagConfig, lagMapping );
   Quelm::Ptr< Oxa::OxaEvpnTepSegmentSm > segmentSm =
      Oxa::OxaEvpnTepSegmentSm::OxaEvpnTepSegmentSmIs( evpnStatus, dir, nullptr, lagMapping );
};

}  // namespace Support
