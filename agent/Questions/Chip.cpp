// Questions about the chip and the past: TCAM use, MAC addresses, frames kept back, the log.
#include <Questions/Names.h>
#include <Questions/Table.h>
#include <Snapshot/RuleText.h>

namespace Questions {

namespace {

// For whom or what the rule is: "VTEP 10.0.0.2".
std::string purposeOf( Audit::RuleFor const & what, Names const & names ) {
   using Audit::Purpose;
   switch ( what.purpose ) {
   case Purpose::l2Unicast: return "known unicast";
   case Purpose::l3Unicast: return "routed unicast";
   case Purpose::vni: return "VNI " + std::to_string( what.vni );
   case Purpose::egressDrop:
      return "VTEP " + what.vtep.stringValue() + " on " + names.interfaceAt( what.port );
   case Purpose::vtep: break;
   }
   return "VTEP " + what.vtep.stringValue();
}

}  // namespace

Rows tcam( Context const & context ) {
   auto const & rooms = context.chronicle.rooms();
   Names const names( context.auditor.state() );
   std::map< std::pair< U32, Vornal::TcamGroupAssignment >, std::vector< std::string > > without;
   for ( Audit::RuleFor const & what : context.auditor.report().withoutRoom ) {
      without[ { what.unit, what.group() } ].push_back( purposeOf( what, names ) );
   }
   Rows rows;
   for ( auto const & [ number, unit ] : context.units ) {
      for ( auto const & [ assignment, group ] : unit.groups() ) {
         auto const room = rooms.find( { number, assignment } );
         auto const past = room == rooms.end() ? Chronicle::Room() : room->second;
         rows.push_back( { U64{ number }, Chip::groupText( assignment ), U64{ group.capacity() },
                           U64{ group.used() }, U64{ group.foreign() }, U64{ group.room() },
                           U64{ past.most }, U64{ past.refused },
                           without[ { number, assignment } ] } );
      }
   }
   return rows;
}

Rows macs( Context const & context ) {
   Rows rows;
   for ( Chip::LearnedMac const & mac : context.traffic.macs() ) {
      auto const & vtep = mac.place.remoteVtep;
      auto const step = context.chronicle.stepOf( mac.frame );
      rows.push_back( { U64{ mac.vlan }, mac.address.stringValue(),
                        vtep ? Story::Cell() : Story::Cell( mac.place.intfId.stringValue() ),
                        vtep ? Story::Cell( vtep->stringValue() ) : Story::Cell(), mac.frame,
                        step ? Story::Cell( U64{ *step } ) : Story::Cell() } );
   }
   return rows;
}

Rows counters( Context const & context ) {
   Rows rows;
   for ( auto const & [ what, frames ] : context.chronicle.keptBack() ) {
      rows.push_back( { what.vtep.empty() ? Story::Cell() : Story::Cell( what.vtep ),
                        what.interface, U64{ what.rule.unit }, U64{ what.port },
                        Chip::groupText( what.rule.group ), U64{ what.rule.id }, frames } );
   }
   return rows;
}

Rows log( Context const & context ) {
   Rows rows;
   for ( Chronicle::LogLine const & line : context.chronicle.log() ) {
      rows.push_back( { U64{ line.step }, line.name, line.line } );
   }
   return rows;
}

}  // namespace Questions
