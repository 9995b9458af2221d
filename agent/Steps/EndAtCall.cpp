#include <Steps/EndAtCall.h>

#include <fmt/format.h>

#include <Calls/Faults.h>
#include <Scenario/ChipOperation.h>
#include <Scenario/Shape.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

Scenario::Table< EndAtCall > const & endTable() {
   static Scenario::Table< EndAtCall > const table{
      { "end-at-call", "The process ends by SIGKILL in place of a later call of the chip." },
      { { { "operation", "", Scenario::operationShape() }, Scenario::readOperation< EndAtCall > },
        { { "number", "number: 1", Scenario::callNumberShape( "" ) },
          Scenario::readCallNumber< EndAtCall > } }
   };
   return table;
}

}  // namespace

std::vector< WordList > EndAtCall::vocabulary() {
   return { endTable().list() };  // fail-call has the operations
}

void EndAtCall::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, endTable(), *this );
}

std::string EndAtCall::description() const {
   return fmt::format( "the process ends at call {}{} from now on", number,
                       operation.empty() ? "" : " of " + operation );
}

void EndAtCall::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] { context.faults.endNew( number, operation ); } );
}

}  // namespace Steps
