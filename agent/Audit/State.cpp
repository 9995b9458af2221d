#include <Audit/State.h>

#include <Audit/Variant.h>
#include <Evpn/EvpnStatus.h>
#include <FeatureToggle/FeatureToggle.h>
#include <Lag/Config.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/Capabilities.h>
#include <VornalCentral/I2EClassIdIndex.h>
#include <VornalCentral/VpIndexStatus.h>
#include <Vxlan/VtiStatusDir.h>

namespace Audit {

namespace {

void read( Vornal::VornalCommonSmData const & common, State & state ) {
   for ( auto unit = common.vornalModIdIter(); unit; ++unit ) {
      state.modules[ unit.key() ] = unit.value();
   }
   for ( auto intf = common.vornalIntfToPortIter(); intf; ++intf ) {
      state.ports[ intf.key() ] = intf.value();
   }
   if ( auto const & points = common.sliceDependencyPoints() ) {
      state.isPluginReady = points->evpnDependencyPoint()->isReady();
   }
}

void read( Lag::Config const & config, State & state ) {
   for ( auto intf = config.phyIntfIter(); intf; ++intf ) {
      if ( !intf.value()->lag().isEmpty() ) {
         state.lags[ intf.value()->lag() ].insert( intf.key() );
      }
   }
}

void read( Evpn::EvpnStatus const & status, State & state ) {
   for ( auto segment = status.segmentStatusIter(); segment; ++segment ) {
      auto & vteps = state.segments[ segment.key() ];
      for ( auto vtep = segment.value()->remoteTepIter(); vtep; ++vtep ) {
         vteps.insert( vtep.key() );
      }
   }
}

void read( VornalCentral::VpIndexStatus const & status, State & state ) {
   for ( auto vtep = status.remoteVportIter(); vtep; ++vtep ) {
      if ( vtep.key() == VornalCentral::getRemoteVtepKeyForIp( vtep.key().vtepIp() ) ) {
         state.virtualPorts[ vtep.key().vtepIp() ] = vtep.value();
      }
   }
}

void read( Vxlan::VtiStatusDir const & dir, State & state ) {
   for ( auto intf = dir.vtiStatusIter(); intf; ++intf ) {
      auto & vnis = state.vnis[ intf.key() ];
      for ( auto vrf = intf.value()->vrfToVniMapIter(); vrf; ++vrf ) {
         if ( !vrf.value().isNone() && vrf.value().value() != 0 ) {
            vnis[ vrf.key() ] = vrf.value().value();
         }
      }
   }
}

void read( VornalCentral::VxlanCapabilities const & capabilities, State & state ) {
   state.variant = variantWith( capabilities );
}

void read( VornalCentral::VornalAttributes const & attributes, State & state ) {
   state.isL3MulticastExempt = attributes.l3McastExemptFromSplitHorizon();
}

void read( VornalCentral::I2EClassIdIndexConfig const & config, State & state ) {
   for ( auto vtep = config.remoteESPeerVtepIter(); vtep; ++vtep ) {
      state.classIdRequests.insert( vtep.key() );
   }
}

void read( VornalCentral::I2EClassIdIndexStatus const & status, State & state ) {
   for ( auto vtep = status.remoteESPeerVtepIter(); vtep; ++vtep ) {
      if ( vtep.value().isValid() ) {
         state.classIds[ vtep.key() ] = vtep.value();
      }
   }
}

// Reads the entity if it is a T.
template< typename T > void readIf( Quelm::Ptr< Kiv::Entity > const & entity, State & state ) {
   if ( auto const typed = Quelm::dynamicCast< T const >( entity ) ) {
      read( *typed, state );
   }
}

template< typename... T > void readAs( Quelm::Ptr< Kiv::Entity > const & entity, State & state ) {
   ( readIf< T >( entity, state ), ... );
}

}  // namespace

State stateOf( StateDatabase::Directory::Entities const & published ) {
   State state;
   state.isOverrideRuleOn =
      FeatureToggle::isEnabled( "SbdEvpnTcamOverrideRule", "VornalL3.json", true );
   for ( auto const & [ path, entity ] : published ) {
      readAs< Vornal::VornalCommonSmData, Lag::Config, Evpn::EvpnStatus,
              VornalCentral::VpIndexStatus, Vxlan::VtiStatusDir, VornalCentral::VxlanCapabilities,
              VornalCentral::VornalAttributes, VornalCentral::I2EClassIdIndexConfig,
              VornalCentral::I2EClassIdIndexStatus >( entity, state );
   }
   return state;
}

}  // namespace Audit
