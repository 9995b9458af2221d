#include <Steps/ForeignEntries.h>

#include <fmt/format.h>

#include <Scenario/Scenario.h>
#include <Scenario/Shape.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

void readCount( Reading & reading, Value const & value, ForeignEntries & foreign ) {
   foreign.count = numberOf( reading, value, 0, Scenario::Tcam::kMostEntries ).value_or( 0 );
}

Scenario::Table< ForeignEntries > const & foreignTable() {
   static Scenario::Table< ForeignEntries > const table{
      { "foreign-entries",
        "Other users of a group hold this many of its entries from now on, or as many as there is "
        "room for." },
      { { { "group", "group: ingress", Shape::of( "tcam-group" ) },
          Scenario::readGroup< ForeignEntries > },
        { { "unit", "", Shape::of( "unit-number", "The unit; each of them if left out." ) },
          Scenario::readUnit< ForeignEntries > },
        { { "count", "count: 3",
            Shape::number( 0, Scenario::Tcam::kMostEntries, "The number of entries." ) },
          readCount } }
   };
   return table;
}

}  // namespace

std::vector< WordList > ForeignEntries::vocabulary() {
   return { foreignTable().list() };
}

void ForeignEntries::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, foreignTable(), *this );
}

std::string ForeignEntries::description() const {
   return fmt::format( "others hold {} of group {} on {}",
                       count == 1 ? "1 entry" : fmt::format( "{} entries", count ), nameOf( group ),
                       unit ? fmt::format( "unit {}", *unit ) : "each unit" );
}

void ForeignEntries::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] { occupy( context ); } );
}

void ForeignEntries::occupy( Context const & context ) const {
   Vornal::TcamGroupAssignment const assignment = assignmentOf( group );
   auto const manager = context.board.entryManager( assignment );
   for ( auto const & [ number, chip ] : context.board.units() ) {
      bool const isMeant = !unit || *unit == number;
      if ( isMeant && chip.groups().contains( assignment ) ) {
         U32 const held = manager->foreignEntriesIs( number, count );
         context.observer.onEvent( Story::ForeignEntriesAre{ number, assignment, count, held } );
      }
   }
}

}  // namespace Steps
