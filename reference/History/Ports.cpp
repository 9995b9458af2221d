// Ports that come and go while a VTEP has its rules.
#include <History/Senders.h>

namespace Reference {

namespace {

void requireInMask( Port const & port ) {
   require( port.number <= Port::kHighestInMask,
            "Brum::PerUnitBitmapWordIndex::value < 0 or > Brum::PerUnitBitmapWordIndex::max not "
            "allowed",
            "" );
}

}  // namespace

Senders::Ports Senders::portsToCover( unsigned unit, Vtep const & vtep ) const {
   Ports const ports = facts_.sharedPorts( unit, vtep );
   for ( Port const & port : ports ) {
      requireInMask( port );
   }
   return ports;
}

// --- Events

void Senders::sharedInterfaceChanges( Vtep const & vtep, Interface const & intf, bool isShared ) {
   if ( !facts_.virtualPort.contains( vtep ) ) {
      return;
   }
   for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
      if ( hasRule( unit, vtep ) && facts_.isKnown( intf ) ) {
         followUp( unit, vtep, intf, isShared );
      }
   }
}

void Senders::portChanges( Interface const & intf ) {
   auto const portChannel = facts_.portChannelOf.find( intf );
   auto const segment =
      facts_.segment.find( portChannel == facts_.portChannelOf.end() ? intf : portChannel->second );
   if ( segment == facts_.segment.end() ) {
      return;
   }
   unsigned const unit = facts_.lastPort.at( intf ).unit;
   for ( Vtep const & vtep : segment->second ) {
      if ( hasRule( unit, vtep ) ) {
         followUp( unit, vtep, intf, facts_.port.contains( intf ) );
      }
   }
}

void Senders::memberChanges( Interface const & portChannel, Interface const & member,
                             bool isMember ) {
   auto const segment = facts_.segment.find( portChannel );
   if ( segment == facts_.segment.end() ) {
      return;
   }
   for ( Vtep const & vtep : segment->second ) {
      for ( auto const & [ unit, module ] : device_.moduleOfUnit ) {
         if ( hasRule( unit, vtep ) ) {
            followUp( unit, vtep, member, isMember );
         }
      }
   }
}

// --- What an event does to the rules of one VTEP on one unit

// Takes the ports that the interface had before out of the rules, then adds those that it has now;
// or takes these out, too, when it leaves. A port channel counts with its members on this unit, an
// Ethernet interface with its port wherever that is.
void Senders::followUp( unsigned unit, Vtep const & vtep, Interface const & intf, bool isAdded ) {
   Ports before;
   Ports now = facts_.portsOf( intf );
   if ( intf.isPortChannel() ) {
      std::erase_if( now, [ & ]( Port const & port ) { return port.unit != unit; } );
   } else if ( auto const last = facts_.lastPort.find( intf );
               last != facts_.lastPort.end() && !now.contains( last->second ) ) {
      before.insert( last->second );
   }
   if ( before.empty() && now.empty() ) {
      return;
   }
   require( isAdded || before.size() != now.size(), "portList.ports() ^ prevPortList.ports()",
            "getPortListsOnUpdate" );
   if ( !usesClassIds() ) {
      followUpMask( senderOn( unit, vtep ), before, now, isAdded );
      return;
   }
   dropNoMore( unit, vtep, before );
   isAdded ? void( drop( unit, vtep, now ) ) : dropNoMore( unit, vtep, now );
}

void Senders::followUpMask( Sender & sender, Ports const & before, Ports const & now,
                            bool isAdded ) {
   std::set< unsigned > mask = sender.mask.value_or( std::set< unsigned >() );
   for ( Port const & port : before ) {
      requireInMask( port );
      mask.erase( port.number );
   }
   for ( Port const & port : now ) {
      requireInMask( port );
      if ( isAdded ) {
         mask.insert( port.number );
      } else {
         mask.erase( port.number );
      }
   }
   groups_.maskIs( sender.rule, mask );
   require( groups_.reinstall( sender.rule ) == 0, "rc == BCM_E_NONE && \"reinstallEntry failed\"",
            "updateIfpTcamEntries" );
   sender.mask = mask;
}

}  // namespace Reference
