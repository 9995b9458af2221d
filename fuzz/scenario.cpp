// Any text is either a scenario or refused with problems that have a place and a message; and what
// a scenario's steps say of themselves can be written. For libFuzzer; fuzz/README.md has the
// command.
#include <algorithm>
#include <cstdint>
#include <cstdio>
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

// A record has no lines: its refusal names the file alone, with line 0.
bool isRecord( std::string const & text ) {
   return text.starts_with( "\x50\x2a\x4d\x18" );
}

void checkIsTold( Scenario::Problem const & problem, std::string const & text ) {
   auto const lines = std::count( text.begin(), text.end(), '\n' ) + 1;
   bool const hasLine = problem.line >= 1 && problem.line <= lines;
   bool const hasPlace = hasLine || ( problem.line == 0 && isRecord( text ) );
   if ( !hasPlace || problem.file.empty() || problem.message.empty() ) {
      std::fprintf( stderr, "line %d of %ld: %s\n", problem.line, static_cast< long >( lines ),
                    problem.text().c_str() );
      std::abort();
   }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   std::string const text( data, data + size );
   try {
      describe( Steps::readScenarioText( text, "fuzzed.yaml" ) );
   } catch ( Scenario::ReadError const & error ) {
      for ( Scenario::Problem const & problem : error.problems() ) {
         checkIsTold( problem, text );
      }
   }
   return 0;
}
