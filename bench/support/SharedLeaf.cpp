#include <support/SharedLeaf.h>

#include <algorithm>

#include <VornalEvpnSm/EgressMask/EvpnMultihomingLocalBiasWithEgressMaskSm.h>
#include <VornalEvpnSm/I2EClassId/EvpnMultihomingLocalBiasWithI2EClassIdSm.h>

namespace Bench {

namespace {

constexpr U32 kPortsPerChannel = 4;
constexpr U32 kVnis = 16;
constexpr U32 kMostChanges = 64;  // of virtual ports
constexpr U32 kExemptions = 2;
constexpr U32 kVirtualPorts = 0x10000;
constexpr U32 kMovingPort = 1;

std::string nameOfPort( U32 number ) {
   return "Ethernet" + std::to_string( number + 1 );
}
std::string nameOfChannel( U32 number ) {
   return "Port-Channel" + std::to_string( number + 1 );
}

L3::VrfName vrfOf( U32 number ) {
   return L3::VrfName( "vrf" + std::to_string( number ) );
}

Pelk::IpGenAddr vtepAddress( U32 number ) {
   return Pelk::IpGenAddr::ipv4(
      { 10, 1, static_cast< U8 >( number >> 8 ), static_cast< U8 >( number & 0xff ) } );
}

}  // namespace

Chip::BoardConfig SharedLeaf::boardOf( Shape const & shape ) {
   Chip::BoardConfig config;
   for ( U16 unit = 0; unit < shape.units; ++unit ) {
      config.units.push_back(
         { unit,
           static_cast< U16 >( unit + 1 ),
           { { Vornal::kIfpLocalBiasGroup, kExemptions + shape.vteps + shape.unrelated + kVnis },
             { Vornal::kEfpLocalBiasGroup,
               shape.vteps * shape.ports + shape.unrelated * kPortsPerChannel } } } );
   }
   return config;
}

SharedLeaf::SharedLeaf( Shape const & shape, Chip::CallObserver * observer )
      : SwitchState( boardOf( shape ), observer ), shape_( shape ) {
   turn( [ this ] {
      for ( U32 channel = 0; channel <= channels(); ++channel ) {
         segmentIs( nameOfChannel( channel ), {} );
         for ( U32 n = 0; n < kPortsPerChannel; ++n ) {
            addPort( channel * kPortsPerChannel + n );
         }
      }
      vtiStatusDir->vtiStatusIs( Support::intf( "Vxlan1" ) );
   } );
}

U32 SharedLeaf::channels() const {
   return shape_.ports / kPortsPerChannel;
}

void SharedLeaf::addPort( U32 number ) {
   auto const unit = static_cast< U16 >( number % shape_.units );
   auto const logicalPort = static_cast< U16 >( 1 + number / shape_.units );
   interfaceIs( nameOfPort( number ), unit, logicalPort );
   memberIs( nameOfChannel( number / kPortsPerChannel ), nameOfPort( number ) );
}

void SharedLeaf::machineNew() {
   auto const ingress = board.entryManager( Vornal::kIfpLocalBiasGroup );
   turn( [ & ] {
      machine_ =
         shape_.variant == Variant::EgressMask
            ? Vornal::evpnMultihomingLocalBiasWithEgressMaskSmFactory( vcsd, dir, vpIndexStatus,
                                                                       evpnStatus, vtiStatusDir,
                                                                       ingress, activity.clock(),
                                                                       lagConfig, lagMapping )
            : Vornal::evpnMultihomingLocalBiasWithI2EClassIdSmFactory(
                 vcsd, dir, vpIndexStatus, evpnStatus, vtiStatusDir, ingress, activity.clock(),
                 lagConfig, lagMapping, board.entryManager( Vornal::kEfpLocalBiasGroup ),
                 classIdConfig, classIdStatus );
   } );
}

void SharedLeaf::turn( std::function< void() > work ) {
   activity.turnNew( std::move( work ) );
   activity.run();
}

// --- Single events

void SharedLeaf::vtepNew( U32 vtep ) {
   turn( [ & ] {
      bool const isUnrelated = vtep >= shape_.vteps;
      U32 const first = isUnrelated ? channels() : 0;
      U32 const end = isUnrelated ? channels() + 1 : channels();
      for ( U32 channel = first; channel < end; ++channel ) {
         evpnStatus->segmentStatus( Support::intf( nameOfChannel( channel ) ) )
            ->remoteTepIs( vtepAddress( vtep ) );
      }
   } );
   virtualPortIs( vtep, vtep + 1 );
}

void SharedLeaf::vtepDel( U32 vtep ) {
   Pelk::IpGenAddr const address = vtepAddress( vtep );
   turn( [ & ] {
      vpIndexStatus->remoteVportDel( VornalCentral::getRemoteVtepKeyForIp( address ) );
      for ( auto segment = evpnStatus->segmentStatusIter(); segment; ++segment ) {
         evpnStatus->segmentStatus( segment.key() )->remoteTepDel( address );
      }
   } );
   if ( shape_.variant == Variant::I2EClassId ) {
      turn( [ & ] { classIdStatus->remoteESPeerVtepDel( address ); } );
   }
}

void SharedLeaf::virtualPortIs( U32 vtep, U32 virtualPort ) {
   Pelk::IpGenAddr const address = vtepAddress( vtep );
   turn( [ & ] {
      vpIndexStatus->remoteVportIs( VornalCentral::getRemoteVtepKeyForIp( address ), virtualPort );
   } );
   if ( shape_.variant == Variant::I2EClassId ) {
      turn( [ & ] { classIdStatus->remoteESPeerVtepDel( address ); } );
      turn( [ & ] {
         classIdStatus->remoteESPeerVtepIs( address, VornalCommon::ClassId(
                                                        static_cast< U16 >( vtep + 1 ) ) );
      } );
   }
}

void SharedLeaf::memberLeaves() {
   turn( [ & ] { memberDel( nameOfPort( 0 ) ); } );
}

void SharedLeaf::memberReturns() {
   turn( [ & ] { memberIs( nameOfChannel( 0 ), nameOfPort( 0 ) ); } );
}

void SharedLeaf::portMoves() {
   auto const unit = static_cast< U16 >( kMovingPort % shape_.units );
   constexpr U16 elsewhere = 300;
   turn( [ & ] { interfaceIs( nameOfPort( kMovingPort ), unit, elsewhere ); } );
}

void SharedLeaf::portReturns() {
   turn( [ & ] { addPort( kMovingPort ); } );
}

void SharedLeaf::vniIs( U32 vrf, U32 vni ) {
   turn( [ & ] {
      vtiStatusDir->vtiStatus( Support::intf( "Vxlan1" ) )
         ->vrfToVniMapIs( vrfOf( vrf ), Vxlan::VniExtOrNone( vni ) );
   } );
}

void SharedLeaf::vniDel( U32 vrf ) {
   turn( [ & ] {
      vtiStatusDir->vtiStatus( Support::intf( "Vxlan1" ) )->vrfToVniMapDel( vrfOf( vrf ) );
   } );
}

// --- What is measured

void SharedLeaf::bringUp() {
   for ( U32 vtep = 0; vtep < shape_.vteps + shape_.unrelated; ++vtep ) {
      vtepNew( vtep );
   }
}

void SharedLeaf::churn() {
   virtualPortsChange();
   memberFlaps();
   portMovesAndReturns();
   if ( shape_.units == 1 ) {
      vnisChange();
   }
}

void SharedLeaf::virtualPortsChange() {
   U32 const vteps = std::min( shape_.vteps, kMostChanges );
   hasOtherPorts_ = !hasOtherPorts_;
   for ( U32 n = 0; n < vteps; ++n ) {
      U32 const vtep = n * ( shape_.vteps / vteps );
      virtualPortIs( vtep, hasOtherPorts_ ? kVirtualPorts - 1 - n : vtep + 1 );
   }
}

void SharedLeaf::memberFlaps() {
   memberLeaves();
   memberReturns();
}

void SharedLeaf::portMovesAndReturns() {
   portMoves();
   portReturns();
}

void SharedLeaf::vnisChange() {
   for ( U32 const first : { 10000U, 20000U } ) {
      for ( U32 n = 0; n < kVnis; ++n ) {
         vniIs( n, first + n );
      }
   }
   for ( U32 n = 0; n < kVnis; ++n ) {
      vniDel( n );
   }
}

void SharedLeaf::remove() {
   for ( U32 vtep = 0; vtep < shape_.vteps + shape_.unrelated; ++vtep ) {
      vtepDel( vtep );
   }
}

}  // namespace Bench
