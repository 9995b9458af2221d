#include <Steps/ExpectedStop.h>

#include <Expectations/Stop.h>
#include <Scenario/ReadError.h>
#include <Steps/Expect.h>

namespace Steps {

namespace {

std::vector< Expectations::Expectation > stopsExpectedIn( Scenario::Step const & step ) {
   std::vector< Expectations::Expectation > stops;
   if ( auto const * const expect = step.as< Expect >() ) {
      for ( Expectations::Expectation const & one : expect->expectations ) {
         if ( one.as< Expectations::Stop >() ) {
            stops.push_back( one );
         }
      }
   }
   return stops;
}

// The first step that expects a stop: its index; the number of steps if there is none.
std::size_t expectingStep( Scenario::Model const & scenario ) {
   std::size_t step = 0;
   while ( step < scenario.steps.size() && stopsExpectedIn( scenario.steps[ step ] ).empty() ) {
      ++step;
   }
   return step;
}

[[noreturn]] void refuse( Scenario::Model const & scenario, int line,
                          std::string const & message ) {
   auto const place = scenario.sources.at( line );
   throw Scenario::ReadError( { { place.name, place.line, message } } );
}

}  // namespace

std::optional< std::size_t > firstNotReached( Scenario::Model const & scenario ) {
   std::size_t const behind = expectingStep( scenario ) + 2;
   return behind < scenario.steps.size() ? std::optional( behind ) : std::nullopt;
}

void checkExpectedStop( Scenario::Model const & scenario ) {
   std::size_t const expecting = expectingStep( scenario );
   if ( expecting >= scenario.ownSteps ) {
      return;
   }
   auto const stops = stopsExpectedIn( scenario.steps[ expecting ] );
   if ( stops.size() > 1 ) {
      refuse( scenario, stops[ 1 ].line, "a process stops once; keep one 'stop' of this step" );
   }
   if ( expecting + 1 == scenario.ownSteps ) {
      refuse( scenario, stops.front().line,
              "stop is about the next step, and no step follows; write the step that stops the "
              "process behind this one" );
   }
   if ( auto const behind = firstNotReached( scenario ); behind && *behind < scenario.ownSteps ) {
      refuse( scenario, scenario.steps[ *behind ].line,
              "the step before is expected to stop the process (" +
                 scenario.sources.placeOf( stops.front().line ) +
                 "), so this step is never carried out; take it out, or the expectation" );
   }
}

}  // namespace Steps
