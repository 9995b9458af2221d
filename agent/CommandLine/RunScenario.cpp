#include <CommandLine/RunScenario.h>

#include <algorithm>
#include <iostream>
#include <sstream>

#include <CommandLine/RecordedRun.h>
#include <Process/Child.h>
#include <Process/RingMemory.h>
#include <Story/HumanWriter.h>
#include <Story/InputError.h>
#include <Story/StopCheck.h>
#include <Story/Wording.h>
#include <Text/Printable.h>

namespace CommandLine {

namespace {

// An answer from a record that was cut is not that of the run's end.
void tellCut( RecordedRun const & record ) {
   if ( std::string const cut = record.cutText(); !cut.empty() ) {
      std::cerr << record.file().string() << ": the record is cut " << cut << '\n';
   }
}

}  // namespace

void runScenario( ScenarioRun const & what, Story::Observer & observer ) {
   Process::RingMemory const ring( what.ring );
   Story::StopCheck checked( observer );
   Process::runInChild(
      [ & ]( Story::Observer & child ) {
         Host::Agent( what.scenario, what.config, ring.bytes(), child ).run();
      },
      ring.bytes(), checked, what.turnLimit );
}

void runScenario( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                  Story::Outcome & outcome ) {
   observers.push_back( &outcome );
   std::optional< SameStory > same;
   if ( what.record ) {
      auto const steps = static_cast< U32 >( what.scenario.steps.size() );
      same.emplace( *what.record, std::min( steps, what.config.lastStep.value_or( steps ) ) );
      observers.push_back( &*same );
   }
   Story::Observers all( std::move( observers ) );
   runScenario( what, all );
   if ( same ) {
      same->check();
      tellCut( *what.record );
   }
}

Story::ExitCode runForAnswer( ScenarioRun const & what, Story::Observer & observer ) {
   std::ostringstream story;
   Story::HumanWriter writer( story, Story::Style( false ) );
   Story::Outcome outcome;
   runScenario( what, { &writer, &observer }, outcome );
   auto const code = outcome.exitCodeOfAnswer();
   if ( code == Story::ExitCode::Stopped ) {
      std::cerr << story.str()
                << "The process has stopped, so there is no answer; ask after an earlier step.\n";
   }
   if ( code == Story::ExitCode::BadInput ) {
      throw Story::InputError( outcome.badInput() );
   }
   tellInterruption( outcome );
   return code;
}

void checkStep( std::string const & option, std::optional< U32 > const & step,
                Scenario::Model const & scenario, std::optional< std::size_t > last ) {
   std::size_t const end = last.value_or( scenario.ownSteps );
   if ( step && *step > end ) {
      throw Story::InputError( option + " " + std::to_string( *step ) + ": " + scenario.file +
                               " ends with step " + std::to_string( end ) );
   }
}

void tellBadInput( Story::Outcome const & outcome ) {
   if ( !outcome.badInput().empty() ) {
      std::cerr << Text::printableLines( outcome.badInput() ) << '\n';
   }
}

void endWith( Scenario::Model & scenario, U32 step ) {
   auto const first = scenario.steps.begin();
   scenario.steps.erase( first + static_cast< std::ptrdiff_t >( step ),
                         first + static_cast< std::ptrdiff_t >( scenario.ownSteps ) );
}

void tellInterruption( Story::Outcome const & outcome ) {
   if ( outcome.interrupted() ) {
      std::cerr << "interrupted in " << nameOf( outcome.step() ) << ' '
                << outcome.interrupted()->words() << '\n';
   }
}

}  // namespace CommandLine
