// Any text is either a scenario or refused with problems that have a place and a message; and what
// a scenario's steps say of themselves can be written. For libFuzzer; fuzz/README.md has the
// command.
#include <cstdint>
#include <cstdlib>
#include <string>

#include <Scenario/Description.h>
#include <Steps/Reader.h>

namespace {

void describe( Scenario::Model const & model ) {
   for ( Scenario::Change const & change : model.published ) {
      Scenario::description( change.what, false );
   }
   for ( Scenario::Step const & step : model.steps ) {
      step.action->description();
   }
}

bool isTold( Scenario::Problem const & problem ) {
   return problem.line >= 1 && !problem.file.empty() && !problem.message.empty();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   try {
      describe( Steps::readScenarioText( std::string( data, data + size ), "fuzzed.yaml" ) );
   } catch ( Scenario::ReadError const & error ) {
      for ( Scenario::Problem const & problem : error.problems() ) {
         if ( !isTold( problem ) ) {
            std::abort();
         }
      }
   }
   return 0;
}
