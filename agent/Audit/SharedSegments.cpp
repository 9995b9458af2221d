#include <Audit/SharedSegments.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace Audit {

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;
using VornalTypes::VornalPort;

// An interface with its valid port on a unit.
struct PortOf {
   IntfId intf;
   VornalPort port;
};

// The physical interfaces of a segment interface that have a port on the unit.
std::vector< PortOf > validPortsOf( State const & state, U16 unit, IntfId const & intf ) {
   std::set< IntfId > physical{ intf };
   if ( isPortChannel( intf ) ) {
      auto const lag = state.lags.find( intf );
      physical = lag == state.lags.end() ? std::set< IntfId >() : lag->second;
   }
   std::vector< PortOf > ports;
   for ( IntfId const & one : physical ) {
      auto const port = state.ports.find( one );
      if ( port != state.ports.end() && port->second.unit() == unit && port->second.isValid() ) {
         ports.push_back( { one, port->second } );
      }
   }
   return ports;
}

std::vector< IntfId > segmentsOf( State const & state, IpGenAddr const & vtep ) {
   std::vector< IntfId > segments;
   for ( auto const & [ intf, vteps ] : state.segments ) {
      if ( vteps.contains( vtep ) ) {
         segments.push_back( intf );
      }
   }
   return segments;
}

// "segment Port-Channel2 through Ethernet3 and Ethernet4"
std::string segmentText( State const & state, U16 unit, IntfId const & segment ) {
   std::vector< std::string > names;
   for ( PortOf const & port : validPortsOf( state, unit, segment ) ) {
      names.push_back( port.intf.stringValue() );
   }
   return names.empty() ? fmt::format( "segment {}, which has no port on unit {}",
                                       segment.stringValue(), unit )
                        : fmt::format( "segment {} through {}", segment.stringValue(),
                                       fmt::join( names, " and " ) );
}

}  // namespace

std::set< IpGenAddr > activeVteps( State const & state ) {
   std::set< IpGenAddr > active;
   for ( auto const & [ intf, vteps ] : state.segments ) {
      for ( IpGenAddr const & vtep : vteps ) {
         if ( state.virtualPorts.contains( vtep ) ) {
            active.insert( vtep );
         }
      }
   }
   return active;
}

std::set< VornalPort > sharedPorts( State const & state, U16 unit, IpGenAddr const & vtep ) {
   std::set< VornalPort > ports;
   for ( IntfId const & segment : segmentsOf( state, vtep ) ) {
      for ( PortOf const & port : validPortsOf( state, unit, segment ) ) {
         ports.insert( port.port );
      }
   }
   return ports;
}

U16 vpIndexOf( State const & state, IpGenAddr const & vtep ) {
   auto const found = state.virtualPorts.find( vtep );
   return found == state.virtualPorts.end() ? U16{ 0 } : static_cast< U16 >( found->second );
}

Story::VtepNames vtepNamesIn( State const & state ) {
   Story::VtepNames names;
   for ( auto const & [ vtep, virtualPort ] : state.virtualPorts ) {
      names.add( virtualPort, vtep.stringValue() );
   }
   return names;
}

std::string sharingText( State const & state, U16 unit, IpGenAddr const & vtep ) {
   std::vector< std::string > texts;
   for ( IntfId const & segment : segmentsOf( state, vtep ) ) {
      texts.push_back( segmentText( state, unit, segment ) );
   }
   return fmt::format( "VTEP {} shares {}; virtual port {}", vtep.stringValue(),
                       fmt::join( texts, ", and " ), state.virtualPorts.at( vtep ) );
}

}  // namespace Audit
