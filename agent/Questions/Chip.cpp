// Questions about the chip and the past: TCAM use, MAC addresses, frames kept back, the log.
#include <Questions/Table.h>
#include <Snapshot/RuleText.h>

namespace Questions {

Rows tcam( Context const & context ) {
   auto const & rooms = context.chronicle.rooms();
   Rows rows;
   for ( auto const & [ number, unit ] : context.units ) {
      for ( auto const & [ assignment, group ] : unit.groups() ) {
         auto const room = rooms.find( { number, assignment } );
         auto const past = room == rooms.end() ? Chronicle::Room() : room->second;
         rows.push_back( { U64{ number }, Chip::groupText( assignment ), U64{ group.capacity() },
                           U64{ group.used() }, U64{ group.foreign() }, U64{ group.room() },
                           U64{ past.most }, U64{ past.refused } } );
      }
   }
   return rows;
}

Rows macs( Context const & context ) {
   Rows rows;
   for ( Chip::LearnedMac const & mac : context.traffic.macs() ) {
      auto const & vtep = mac.place.remoteVtep;
      rows.push_back( { U64{ mac.vlan }, mac.address.stringValue(),
                        vtep ? Story::Cell() : Story::Cell( mac.place.intfId.stringValue() ),
                        vtep ? Story::Cell( vtep->stringValue() ) : Story::Cell(), mac.frame } );
   }
   return rows;
}

Rows counters( Context const & context ) {
   Rows rows;
   for ( auto const & [ what, frames ] : context.chronicle.keptBack() ) {
      rows.push_back( { what.vtep.empty() ? Story::Cell() : Story::Cell( what.vtep ),
                        what.interface, U64{ what.rule.unit }, Chip::groupText( what.rule.group ),
                        U64{ what.rule.id }, frames } );
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
