#include <Questions/Names.h>
#include <Questions/Table.h>
#include <Snapshot/RuleText.h>

namespace Questions {

namespace {

using Story::Cell;

// The cells of the state behind the rule: VTEP, interface, and the sentence.
struct Behind {
   Cell vtep;
   Cell interface;
   Cell because = "nothing that is published; the rule is not expected";
};

Behind behind( Audit::ExpectedEntry const & expected, Names const & names ) {
   Behind result{ {}, {}, expected.because };
   using Audit::Purpose;
   if ( expected.what.purpose == Purpose::vtep || expected.what.purpose == Purpose::egressDrop ) {
      result.vtep = expected.what.vtep.stringValue();
   }
   if ( expected.what.purpose == Purpose::egressDrop ) {
      result.interface = names.interfaceAt( expected.what.port );
   }
   return result;
}

}  // namespace

Rows rules( Context const & context ) {
   Names const names( context.auditor.state() );
   auto const expected = context.auditor.expectedEntries();
   auto const & steps = context.chronicle.rules();
   Rows rows;
   for ( Chip::Rule const & rule : Chip::rulesOf( context.units ) ) {
      auto const state = expected.find( rule.key );
      Behind const cells = state == expected.end() ? Behind() : behind( state->second, names );
      auto const step = steps.find( rule.key );
      auto const inStep = [ & ]( U32 Chronicle::Steps::*which ) {
         return step == steps.end() ? Cell() : Cell( U64{ step->second.*which } );
      };
      // In the order of the columns (Questions/Table.cpp).
      rows.push_back(
         { U64{ rule.key.unit }, Chip::groupText( rule.key.group ), U64{ rule.key.id }, cells.vtep,
           cells.interface, Chip::qualifiersText( rule.content, names ),
           Chip::actionsText( rule.content ) + ( rule.isWritten ? "" : " (staged only)" ),
           rule.content.priority ? Cell( U64{ *rule.content.priority } ) : Cell(),
           inStep( &Chronicle::Steps::programmed ), inStep( &Chronicle::Steps::changed ),
           cells.because } );
   }
   return rows;
}

}  // namespace Questions
