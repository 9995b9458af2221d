#include <Facts/Facts.h>

namespace Reference {

std::set< Interface > Facts::sharedWith( Vtep const & vtep ) const {
   std::set< Interface > shared;
   for ( auto const & [ intf, vteps ] : segment ) {
      if ( vteps.contains( vtep ) ) {
         shared.insert( intf );
      }
   }
   return shared;
}

std::set< Vtep > Facts::sharing() const {
   std::set< Vtep > all;
   for ( auto const & [ intf, vteps ] : segment ) {
      all.insert( vteps.begin(), vteps.end() );
   }
   return all;
}

std::set< Interface > Facts::membersOf( Interface const & portChannel ) const {
   std::set< Interface > members;
   for ( auto const & [ member, its ] : portChannelOf ) {
      if ( its == portChannel ) {
         members.insert( member );
      }
   }
   return members;
}

bool Facts::isKnown( Interface const & intf ) const {
   return intf.isPortChannel() ? !membersOf( intf ).empty() : port.contains( intf );
}

std::set< Port > Facts::portsOf( Interface const & intf ) const {
   std::set< Port > ports;
   for ( Interface const & one :
         intf.isPortChannel() ? membersOf( intf ) : std::set< Interface >{ intf } ) {
      if ( auto const found = port.find( one ); found != port.end() ) {
         ports.insert( found->second );
      }
   }
   return ports;
}

std::set< Port > Facts::sharedPorts( unsigned unit, Vtep const & vtep ) const {
   std::set< Port > shared;
   for ( Interface const & intf : sharedWith( vtep ) ) {
      for ( Port const & one : portsOf( intf ) ) {
         if ( one.unit == unit && one.number != Port::kInvalid ) {
            shared.insert( one );
         }
      }
   }
   return shared;
}

Interface Facts::interfaceOf( Port const & wanted ) const {
   for ( auto const & [ intf, its ] : port ) {
      if ( its == wanted ) {
         return intf;
      }
   }
   return {};
}

namespace {

unsigned gportOf( unsigned virtualPort ) {
   constexpr unsigned kVxlanGports = 0x56000000;
   return kVxlanGports + ( virtualPort & 0xffff );
}

}  // namespace

unsigned Facts::gportOf( Vtep const & vtep ) const {
   auto const found = virtualPort.find( vtep );
   return Reference::gportOf( found == virtualPort.end() ? 0 : found->second );
}

unsigned Facts::gportOfFramesFrom( Vtep const & vtep ) const {
   unsigned gport = gportOf( vtep );
   for ( auto const & [ key, number ] : otherKey ) {
      // A key without a group and with a tunnel interface below 1 comes before the usual one.
      bool const isLater = !key.group.empty() || key.tunnel > 1 || !virtualPort.contains( vtep );
      if ( key.vtep == vtep && isLater ) {
         gport = Reference::gportOf( number );
      }
   }
   return gport;
}

}  // namespace Reference
