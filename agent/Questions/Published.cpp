// Questions about published state: segments, VTEPs, ports, class ids.
#include <Audit/SharedSegments.h>
#include <Questions/Names.h>
#include <Questions/Table.h>
#include <Snapshot/RuleText.h>

#include <fmt/format.h>

namespace Questions {

namespace {

using Audit::State;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using Story::Cell;

template< typename Values > std::vector< std::string > textsOf( Values const & values ) {
   std::vector< std::string > texts;
   for ( auto const & value : values ) {
      texts.push_back( Quelm::textOf( value ) );
   }
   return texts;
}

// The physical interfaces of the segment's interface.
std::set< IntfId > physicalOf( State const & state, IntfId const & intf ) {
   auto const lag = state.lags.find( intf );
   return lag == state.lags.end() ? std::set< IntfId >{ intf } : lag->second;
}

// "Ethernet3 (unit 0 port 3)" of each physical interface that has a port.
std::vector< std::string > portsOf( State const & state, IntfId const & intf ) {
   std::vector< std::string > texts;
   for ( IntfId const & physical : physicalOf( state, intf ) ) {
      auto const port = state.ports.find( physical );
      if ( port != state.ports.end() && port->second.isValid() ) {
         texts.push_back( fmt::format( "{} (unit {} port {})", physical.stringValue(),
                                       port->second.unit(), port->second.logicalPort() ) );
      }
   }
   return texts;
}

std::vector< std::string > segmentsOf( State const & state, IpGenAddr const & vtep ) {
   std::vector< std::string > segments;
   for ( auto const & [ intf, vteps ] : state.segments ) {
      if ( vteps.contains( vtep ) ) {
         segments.push_back( intf.stringValue() );
      }
   }
   return segments;
}

// Whether hosts on the VTEP's segments are safe from frames that arrive twice, or why not.
std::string protectionOf( State const & state, Audit::Report const & report,
                          IpGenAddr const & vtep ) {
   if ( segmentsOf( state, vtep ).empty() ) {
      return "not needed: it shares no segment";
   }
   if ( !state.virtualPorts.contains( vtep ) ) {
      return "none: it has no virtual port";
   }
   if ( !state.isPluginReady ) {
      return "none: the plug-in is not ready";
   }
   auto const unprotected = report.unprotected.find( vtep );
   return unprotected == report.unprotected.end() ? "protected" : "none: " + unprotected->second;
}

// How many rules each VTEP has.
std::map< IpGenAddr, U64 > rulesByVtep( Context const & context ) {
   std::map< IpGenAddr, U64 > rules;
   for ( auto const & [ key, expected ] : context.auditor.expectedEntries() ) {
      using Audit::Purpose;
      bool const isOfVtep =
         expected.what.purpose == Purpose::vtep || expected.what.purpose == Purpose::egressDrop;
      if ( isOfVtep ) {
         ++rules[ expected.what.vtep ];
      }
   }
   return rules;
}

Cell classIdOf( State const & state, IpGenAddr const & vtep ) {
   auto const granted = state.classIds.find( vtep );
   return granted == state.classIds.end() ? Cell() : Cell( U64{ granted->second.value() } );
}

// The port channel that the interface is a member of; empty without one.
IntfId portChannelOf( State const & state, IntfId const & member ) {
   for ( auto const & [ lag, members ] : state.lags ) {
      if ( members.contains( member ) ) {
         return lag;
      }
   }
   return {};
}

}  // namespace

Rows segments( Context const & context ) {
   State const state = context.auditor.state();
   Rows rows;
   for ( auto const & [ intf, vteps ] : state.segments ) {
      rows.push_back( { intf.stringValue(), portsOf( state, intf ), textsOf( vteps ) } );
   }
   return rows;
}

Rows vteps( Context const & context ) {
   State const state = context.auditor.state();
   Audit::Report const report = context.auditor.report();
   auto const rules = rulesByVtep( context );
   std::set< IpGenAddr > all;
   for ( auto const & [ vtep, virtualPort ] : state.virtualPorts ) {
      all.insert( vtep );
   }
   for ( auto const & [ intf, shared ] : state.segments ) {
      all.insert( shared.begin(), shared.end() );
   }
   Rows rows;
   for ( IpGenAddr const & vtep : all ) {
      auto const virtualPort = state.virtualPorts.find( vtep );
      bool const hasPort = virtualPort != state.virtualPorts.end();
      auto const count = rules.find( vtep );
      rows.push_back(
         { vtep.stringValue(), hasPort ? Cell( U64{ virtualPort->second } ) : Cell(),
           hasPort ? Cell( fmt::format( "{:#x}", Chip::vxlanGportOf( vpIndexOf( state, vtep ) ) ) )
                   : Cell(),
           segmentsOf( state, vtep ), classIdOf( state, vtep ),
           count == rules.end() ? U64{ 0 } : count->second, protectionOf( state, report, vtep ) } );
   }
   return rows;
}

Rows ports( Context const & context ) {
   State const state = context.auditor.state();
   Rows rows;
   for ( auto const & [ intf, port ] : state.ports ) {
      IntfId const portChannel = portChannelOf( state, intf );
      IntfId const & owner = portChannel.isEmpty() ? intf : portChannel;
      auto const segment = state.segments.find( owner );
      bool const isOnSegment = segment != state.segments.end();
      rows.push_back( { U64{ port.unit() },
                        port.isValid() ? Cell( U64{ port.logicalPort() } ) : Cell( "not valid" ),
                        intf.stringValue(),
                        portChannel.isEmpty() ? Cell() : Cell( portChannel.stringValue() ),
                        isOnSegment ? Cell( owner.stringValue() ) : Cell(),
                        isOnSegment ? Cell( textsOf( segment->second ) ) : Cell() } );
   }
   return rows;
}

Rows classIds( Context const & context ) {
   State const state = context.auditor.state();
   auto const rules = rulesByVtep( context );
   std::set< IpGenAddr > all = state.classIdRequests;
   for ( auto const & [ vtep, id ] : state.classIds ) {
      all.insert( vtep );
   }
   Rows rows;
   for ( IpGenAddr const & vtep : all ) {
      auto const count = rules.find( vtep );
      rows.push_back( { vtep.stringValue(), state.classIdRequests.contains( vtep ) ? "yes" : "no",
                        classIdOf( state, vtep ),
                        count == rules.end() ? U64{ 0 } : count->second } );
   }
   return rows;
}

}  // namespace Questions
