#include <VornalTypes/VornalPortList.h>

#include <algorithm>

namespace VornalTypes {

bool VornalPortList::portIs( VornalPort const & port ) {
   if ( ports_.empty() || ports_.back() < port ) {
      ports_.push_back( port );
      return true;
   }
   auto const place = std::lower_bound( ports_.begin(), ports_.end(), port );
   if ( *place == port ) {
      return false;
   }
   ports_.insert( place, port );
   return true;
}

bool VornalPortList::portDel( VornalPort const & port ) {
   auto const place = std::lower_bound( ports_.begin(), ports_.end(), port );
   if ( place == ports_.end() || *place != port ) {
      return false;
   }
   ports_.erase( place );
   return true;
}

bool VornalPortList::portHas( VornalPort const & port ) const {
   return std::binary_search( ports_.begin(), ports_.end(), port );
}

void VornalPortList::textTo( std::string & out ) const {
   out += '{';
   for ( VornalPort const & port : ports_ ) {
      out += out.back() == '{' ? "" : ",";
      port.textTo( out );
   }
   out += '}';
}

VornalPortList VornalPortList::textFrom( Quelm::TextReader & in ) {
   VornalPortList list;
   in.expect( "{" );
   if ( in.accept( "}" ) ) {
      return list;
   }
   do {
      Quelm::TextReader const before = in;
      VornalPort const port = VornalPort::textFrom( in );
      if ( !list.ports_.empty() && port <= list.ports_.back() ) {
         before.fail( "a port after " + Quelm::textOf( list.ports_.back() ) );
      }
      list.ports_.push_back( port );
   } while ( in.accept( "," ) );
   in.expect( "}" );
   return list;
}

}  // namespace VornalTypes
