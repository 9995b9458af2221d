// leaf1: a switch with a real software chip and the state that the local-bias machine reads,
// published by real derivations. Nothing is on it at first but its units, whose module ids are 40,
// 41, ...
//
// A test says what other agents publish, in the words of a switch's configuration, builds the
// machine of one variant, and looks at what it traces, logs and does to the chip.
#pragma once

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include <Board/Board.h>
#include <Decorators/RecordingSdk.h>
#include <Kiv/Activity.h>
#include <Lag/LagPhyIntfMappingSm.h>
#include <Log/Log.h>
#include <Oxa/OxaEvpnTepSegmentSm.h>
#include <Trace/Trace.h>
#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>

namespace Support {

using Lines = std::vector< std::string >;
using Machine = Quelm::Ptr< Vornal::EvpnMultihomingLocalBiasSm >;

inline Pelk::IntfId intf( std::string const & name ) {
   return Pelk::IntfId::fromString( name );
}
inline Pelk::IpGenAddr ip( std::string const & address ) {
   return Pelk::IpGenAddr::fromString( address );
}
inline VornalCentral::RemoteVtepKey vtep( std::string const & address ) {
   return VornalCentral::getRemoteVtepKeyForIp( ip( address ) );
}

enum class Variant { EgressMask, I2EClassId };

class LocalBiasSwitch : private Chip::CallObserver {
 public:
   explicit LocalBiasSwitch( U16 units = 1, U32 capacity = 64 )
         : board( configOf( units, capacity ), this ), recorder_( board.sdk(), *this ) {
      Shim::sdk_ = &recorder_;
      Trace::sinkIs( [ this ]( Trace::Line const & line ) {
         traces.push_back( std::to_string( line.level ) + " " + std::string( line.text ) );
      } );
      Trace::levelsIs( "VornalEvpnSm", "0-9" );
      Log::sinkIs( [ this ]( Log::Message const & message ) { logs.push_back( message.line ); } );
      for ( U16 unit = 0; unit < units; ++unit ) {
         vcsd->vornalModIdIs( unit, modIdOf( unit ) );
      }
      lagSm->hasNotificationActiveIs( true );
      segmentSm->hasNotificationActiveIs( true );
   }
   LocalBiasSwitch( LocalBiasSwitch const & ) = delete;
   LocalBiasSwitch & operator=( LocalBiasSwitch const & ) = delete;
   ~LocalBiasSwitch() override {
      Trace::sinkIs( {} );
      Log::sinkIs( {} );
      Shim::sdk_ = nullptr;
   }

   static U16 modIdOf( U16 unit ) { return static_cast< U16 >( 40 + unit ); }
   static VornalTypes::VornalPort port( U16 unit, U16 logicalPort ) {
      return VornalTypes::VornalPort( unit, logicalPort, modIdOf( unit ) );
   }

   // --- What other agents publish
   void interfaceIs( std::string const & name, U16 unit, U16 logicalPort ) {
      vcsd->intfPortIs( intf( name ), port( unit, logicalPort ) );
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

   // --- The machine
   Machine machineNew( Variant variant ) {
      if ( variant == Variant::EgressMask ) {
         return Vornal::evpnMultihomingLocalBiasWithEgressMaskSmFactory( vcsd, dir, vpIndexStatus,
                                                                         evpnStatus, vtiStatusDir,
                                                                         ingress, activity.clock(),
                                                                         lagConfig, lagMapping );
      }
      return Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
         vcsd, dir, vpIndexStatus, evpnStatus, vtiStatusDir, ingress, activity.clock(), lagConfig,
         lagMapping, egress, classIdConfig, classIdStatus );
   }

   // --- What is seen
   // The traced lines that begin with "LEVEL TEXT".
   Lines tracesOf( std::string const & beginning ) const {
      Lines found;
      std::copy_if( traces.begin(), traces.end(), std::back_inserter( found ),
                    [ & ]( std::string const & line ) { return line.starts_with( beginning ); } );
      return found;
   }
   bool hasTraced( std::string const & line ) const {
      return std::find( traces.begin(), traces.end(), line ) != traces.end();
   }
   // The calls that reached the hardware, as lines.
   Lines callLines() const {
      Lines lines;
      std::transform( calls.begin(), calls.end(), std::back_inserter( lines ), Chip::toText );
      return lines;
   }
   Chip::CallObserver & callObserver() { return *this; }
   void forget() {
      traces.clear();
      calls.clear();
      logs.clear();
   }

   Lines traces;  // "LEVEL TEXT" of the handle VornalEvpnSm
   Lines logs;
   std::vector< Chip::HardwareCall > calls;
   // What a test does after each call that has reached the hardware.
   std::function< void() > afterCall = [] {};

   Kiv::ActivityManager activity;
   Kiv::ActivityLockAnchor locked{ activity };
   Chip::Board board;
   // The entry managers that machineNew() gives the machine.
   Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > ingress =
      board.entryManager( Vornal::kIfpLocalBiasGroup );
   Quelm::Ptr< Vornal::VornalUnboundedTcamEntryManager > egress =
      board.entryManager( Vornal::kEfpLocalBiasGroup );
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

 private:
   static Chip::BoardConfig configOf( U16 units, U32 capacity ) {
      Chip::BoardConfig config;
      for ( U16 unit = 0; unit < units; ++unit ) {
         config.units.push_back( { .number = unit,
                                   .modId = modIdOf( unit ),
                                   .capacities = { { Vornal::kIfpLocalBiasGroup, capacity },
                                                   { Vornal::kEfpLocalBiasGroup, capacity } } } );
      }
      return config;
   }
   void callMade( Chip::HardwareCall const & call ) override {
      calls.push_back( call );
      afterCall();
   }

   Chip::RecordingSdk recorder_;
};

}  // namespace Support
