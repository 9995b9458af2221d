// From segment interfaces to chip ports.
//
// Segments are configured on interfaces, rules are made of ports. An interface is a physical one,
// with one port, or a port channel, with the ports of its members. Everything is worked out from
// the inputs each time it is asked for; nothing is stored.
//
// Three things are as they are on purpose. getPortListsOnUpdate filters the members of a port
// channel by unit but not a physical interface: its callers rely on the unit of the interface's own
// record. handleVornalIntfToPort takes that unit from the cached map, which still has an interface
// that the live map has lost. Only getSharedESPortInfo leaves invalid ports out: an update to
// logical port 1023 is handed on, and stops the process where a bitmap has no such bit.

#include <Kiv/OrEmpty.h>
#include <VornalEvpnSm/EvpnMultihomingLocalBiasSm.h>
#include <VornalEvpnSm/Module.h>

namespace Vornal {

using Kiv::orEmpty;
using VornalTypes::VornalPort;
using VornalTypes::VornalPortList;

// Calls `visit( port )` for each live port of the port channel, in the order of its members.
template< typename Visit >
void EvpnMultihomingLocalBiasSm::forEachPortOfPortChannel( Pelk::IntfId const & intfId,
                                                           Visit visit ) const {
   auto const config = orEmpty( lagPhyIntfMapping() ).lagPhyIntfConfig( intfId );
   if ( !config ) {
      return;
   }
   TRACE( smTrace, 8, "getPortListForPortChannel, intfId : " << intfId );
   auto const & commonData = orEmpty( vcsd() );
   for ( auto iter = config->phyIntfIter(); iter; ++iter ) {
      if ( commonData.vornalIntfToPortHas( iter.key() ) ) {
         visit( commonData.vornalIntfToPort( iter.key() ) );
         TRACE( smTrace, 8, "getPortListForPortChannel ," << iter.key() );
      }
   }
   TRACE( smTrace, 8, "getPortListForPortChannel, Done intfId : " << intfId );
}

VornalPortList EvpnMultihomingLocalBiasSm::getPortListForPortChannel(
   Pelk::IntfId const & intfId ) const {
   VornalPortList portList;
   forEachPortOfPortChannel( intfId,
                             [ & ]( VornalPort const & port ) { portList.portIs( port ); } );
   return portList;
}

SharedESPortInfo EvpnMultihomingLocalBiasSm::getSharedESPortInfo(
   U32 unit, Pelk::IpGenAddr const & tepIp ) const {
   TRACE( smTrace, 5, "getSharedESPortInfo, unit: " << unit << ", tepIp: " << tepIp );
   SharedESPortInfo info;
   auto const segment = orEmpty( oxaEvpnTepSegmentDir() ).tepSegment( tepIp );
   if ( !segment ) {
      return info;
   }
   Brum::PerUnitBitmap bitmap;
   VornalPortList portList;
   portList.reserve( segment->segments() );
   auto const add = [ & ]( VornalPort const & port ) {
      if ( port.unit() == unit && port.isValid() ) {
         bitmap.bitSet( port.logicalPort() );
         portList.portIs( port );
      }
   };
   auto const & mapping = orEmpty( lagPhyIntfMapping() );
   auto const & commonData = orEmpty( vcsd() );
   for ( auto iter = segment->segmentSetIter(); iter; ++iter ) {
      Pelk::IntfId const & intfId = iter.key();
      bool const isLive = commonData.vornalIntfToPortHas( intfId );
      if ( isPortChannel( intfId ) && ( isLive || mapping.lagPhyIntfConfigHas( intfId ) ) ) {
         forEachPortOfPortChannel( intfId, add );
      } else if ( isLive ) {
         add( commonData.vornalIntfToPort( intfId ) );
      } else {
         TRACE( smTrace, 2, "getSharedESPortInfo port doesn't belong to this mod" );
      }
   }
   info.sharedPortBitmapIs( bitmap );
   info.sharedPortListIs( std::move( portList ) );
   return info;
}

bool EvpnMultihomingLocalBiasSm::isKnownIntf( Pelk::IntfId const & intfId ) const {
   return orEmpty( vcsd() ).vornalIntfToPortHas( intfId ) ||
          ( isPortChannel( intfId ) &&
            orEmpty( lagPhyIntfMapping() ).lagPhyIntfConfigHas( intfId ) );
}

PortListsOnUpdate EvpnMultihomingLocalBiasSm::getPortListsOnUpdate( U32 unit,
                                                                    Pelk::IpGenAddr const & tepIp,
                                                                    Pelk::IntfId const & intfId,
                                                                    bool added ) const {
   TRACE_RING( smTrace, 5,
               "getPortListsOnUpdate, unit: " << unit << ", tepIp: " << tepIp
                                              << ", intfId: " << intfId );
   VornalPortList portList;
   VornalPortList prevPortList;
   if ( isPortChannel( intfId ) ) {
      portList = getPortListForPortChannel( intfId );
      portList.portsDelIf( [ unit ]( VornalPort const & port ) { return port.unit() != unit; } );
   } else {
      portListsOfPhyIntf( intfId, portList, prevPortList );
   }
   if ( portList.isEmpty() && prevPortList.isEmpty() ) {
      TRACE_RING( smTrace, 7, "getPortListsOnUpdate, no update needed" );
      return {};
   }
   if ( !added ) {
      QUELM_ASSERT( portList.ports() ^ prevPortList.ports() );
   }
   PortListsOnUpdate lists;
   lists.portListIs( std::move( portList ) );
   lists.prevPortListIs( std::move( prevPortList ) );
   return lists;
}

void EvpnMultihomingLocalBiasSm::portListsOfPhyIntf( Pelk::IntfId const & intfId,
                                                     VornalPortList & portList,
                                                     VornalPortList & prevPortList ) const {
   auto const & commonData = orEmpty( vcsd() );
   bool const isLive = commonData.vornalIntfToPortHas( intfId );
   VornalPort const live = commonData.vornalIntfToPort( intfId );
   VornalPort const cached = commonData.vornalIntfToPortCache( intfId );
   if ( commonData.vornalIntfToPortCacheHas( intfId ) && ( !isLive || live != cached ) ) {
      TRACE_RING( smTrace, 7, "getPortListsOnUpdate, lport change for intf " << intfId );
      prevPortList.portIs( cached );
   }
   if ( isLive ) {
      portList.portIs( live );
   }
}

void EvpnMultihomingLocalBiasSm::handleVornalIntfToPort( Pelk::IntfId const & intfId ) {
   TRACE( smTrace, 5, "handleVornalIntfToPort, intfId: " << intfId );
   if ( !initialized() ) {
      TRACE_RING( smTrace, 2, "handleVornalIntfToPort, SM not initialized yet" );
      return;
   }
   auto const lagConfig = orEmpty( lagConfigDir() ).phyIntf( intfId );
   Pelk::IntfId const segmentIntf =
      lagConfig && !lagConfig->lag().isEmpty() ? lagConfig->lag() : intfId;
   auto const segment = orEmpty( evpnStatus() ).segmentStatus( segmentIntf );
   if ( !segment ) {
      TRACE( smTrace, 2, "handleVornalIntfToPort, interface: " << intfId << ", not in evpnStatus" );
      return;
   }
   auto const & commonData = orEmpty( vcsd() );
   U32 const unit = commonData.vornalIntfToPortCache( intfId ).unit();
   for ( auto iter = segment->remoteTepIter(); iter; ++iter ) {
      TRACE( smTrace, 7, "handleVornalIntfToPort, intf: " << intfId << ", tepIp: " << iter.key() );
      if ( unitUsesTcamsForTepIp( unit, iter.key() ) ) {
         updateTcamEntries( unit, iter.key(), intfId, commonData.vornalIntfToPortHas( intfId ) );
      }
   }
}

EvpnMultihomingLocalBiasSm::NestedSm_LagPhyIntfConfig::NestedSm_LagPhyIntfConfig(
   Notifier const & config, EvpnMultihomingLocalBiasSm * machine )
      : NestedReactor( config,
                       Kiv::onKey( Lag::LagPhyIntfConfig::phyIntfAttr(), this,
                                   &NestedSm_LagPhyIntfConfig::handleLagMember ),
                       machine ) {}

void EvpnMultihomingLocalBiasSm::NestedSm_LagPhyIntfConfig::handleLagMember(
   Pelk::IntfId const & memberIntf ) {
   if ( !machine().initialized() ) {
      TRACE_RING( smTrace, 2, "handleLagMember, SM not initialized yet" );
      return;
   }
   Pelk::IntfId const lag = intfId();
   auto const segment = orEmpty( machine().evpnStatus() ).segmentStatus( lag );
   if ( !segment ) {
      return;
   }
   auto const config = orEmpty( machine().lagPhyIntfMapping() ).lagPhyIntfConfig( lag );
   bool const added = config && config->phyIntfHas( memberIntf );
   TRACE( smTrace, 5,
          "handleLagMember lag: " << lag << " changed, " << ( added ? "added" : "deleted " )
                                  << memberIntf );
   for ( auto tep = segment->remoteTepIter(); tep; ++tep ) {
      TRACE( smTrace, 8, "handleLagMember, ethIntfId: " << memberIntf << ", tepIp: " << tep.key() );
      for ( auto unit = orEmpty( machine().vcsd() ).vornalModIdIter(); unit; ++unit ) {
         if ( machine().unitUsesTcamsForTepIp( unit.key(), tep.key() ) ) {
            machine().updateTcamEntries( unit.key(), tep.key(), memberIntf, added );
         }
      }
   }
}

}  // namespace Vornal
