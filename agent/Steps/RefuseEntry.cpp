#include <Steps/RefuseEntry.h>

#include <fmt/format.h>

#include <Calls/Faults.h>
#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

constexpr U32 kHighestNumber = ~U32{ 0 };

void readNumber( Reading & reading, Value const & value, RefuseEntry & refuse ) {
   refuse.number = numberOf( reading, value, 1, kHighestNumber ).value_or( 1 );
}

Scenario::Table< RefuseEntry > const & refuseTable() {
   static Scenario::Table< RefuseEntry > const table{
      { "refuse-entry", "A later request for a TCAM entry finds no room." },
      { { { "number", "number: 1",
            Scenario::Shape::number( 1, kHighestNumber,
                                     "The number of the request, counted from now on." ) },
          readNumber } }
   };
   return table;
}

}  // namespace

std::vector< WordList > RefuseEntry::vocabulary() {
   return { refuseTable().list() };
}

void RefuseEntry::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, refuseTable(), *this );
}

std::string RefuseEntry::description() const {
   return fmt::format( "request {} for an entry from now on finds no room", number );
}

void RefuseEntry::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] { context.faults.refusalNew( number ); } );
}

}  // namespace Steps
