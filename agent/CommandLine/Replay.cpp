#include <CommandLine/Replay.h>

#include <iostream>

#include <fmt/format.h>

#include <CommandLine/Progress.h>
#include <CommandLine/ReplayInputs.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Record/Comparison.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Story/Style.h>
#include <Story/Wording.h>

#include <unistd.h>

namespace CommandLine {

namespace {

using Record::Comparison;
using Story::Json;
using Result = Comparison::Result;

Host::AgentConfig configOf( std::filesystem::path plugin, Record::Setup const & setup ) {
   Host::AgentConfig config;
   config.plugin = std::move( plugin );
   config.scenario = setup.scenario;
   config.lastStep = setup.lastStep;
   for ( Record::Levels const & trace : setup.trace ) {
      config.trace.push_back( { trace.handles, trace.levels } );
   }
   return config;
}

// Plays the scenario until the comparison has its result.
void play( ScenarioRun const & what, Comparison & comparison, Story::Outcome & outcome ) {
   Progress progress( std::cerr );
   std::vector< Story::Observer * > observers{ &outcome, &comparison };
   if ( isTerminal( STDERR_FILENO ) ) {
      observers.insert( observers.begin(), &progress );
   }
   Story::Observers all( observers );
   try {
      runScenario( what, all );
   } catch ( Comparison::Over const & ) {
      // The comparison has its result.
   }
}

Story::ExitCode exitCodeOf( Comparison const & comparison, Story::Outcome const & outcome ) {
   if ( outcome.interrupted() ) {
      return outcome.exitCode();
   }
   return comparison.result() == Result::different ? Story::ExitCode::ExpectationFailed
                                                   : Story::ExitCode::Held;
}

// Story::InputError for a plug-in that cannot be loaded: no difference of behaviour.
void checkLoaded( Comparison const & comparison ) {
   bool const isStartUp = comparison.step() && comparison.step()->kind == Story::StepKind::StartUp;
   auto const * const badInput = std::get_if< Story::BadInput >( &comparison.came() );
   if ( comparison.result() == Result::different && isStartUp && badInput ) {
      throw Story::InputError( badInput->text );
   }
}

// --- For people

std::string stepText( std::optional< Story::StepBegins > const & step ) {
   return step ? nameOf( *step ) + ": " + step->text +
                    ( step->place.empty() ? "" : " (" + step->place + ")" )
               : nameOf( step );
}

// `plugin` is that of the replay.
void print( Comparison const & comparison, std::string const & cutText, std::string const & title,
            std::string const & plugin, std::ostream & out ) {
   Story::Style const style( isColoured( STDOUT_FILENO ) );
   auto const line = [ & ]( char const * what, std::string const & text ) {
      out << fmt::format( "   {:<10} {}\n", what, Text::printable( text ) );
   };
   out << style.bold( title ) << '\n';
   if ( comparison.result() == Result::different ) {
      out << style.bad( "DIFFERENT" ) << " in " << Text::printable( stepText( comparison.step() ) )
          << '\n';
      line( "came", Record::wordsOf( comparison.came() ) );
      line( "expected", Record::wordsOf( comparison.expected() ) );
      line( "published", comparison.published() ? comparison.published()->words()
                                                : "nothing was published before" );
      if ( comparison.recordedPlugin() != plugin ) {
         line( "plug-in", plugin + "; the record was made with " + comparison.recordedPlugin() );
      }
   } else if ( comparison.result() == Result::same ) {
      out << style.good( "THE SAME" ) << ": " << Story::counted( comparison.eventsAlike(), "event" )
          << '\n';
   } else {
      out << style.bold( "THE SAME up to the end of the record" ) << ": "
          << Story::counted( comparison.eventsAlike(), "event" ) << '\n';
      line( "cut", cutText );
   }
}

// --- For programs

std::string nameOf( Result result ) {
   switch ( result ) {
   case Result::same: return "same";
   case Result::different: return "different";
   case Result::cut: return "cut";
   case Result::open: break;
   }
   return "interrupted";
}

void printJson( Comparison const & comparison, std::string const & cutText,
                Scenario::Model const & scenario, std::ostream & out ) {
   bool const isDifferent = comparison.result() == Result::different;
   Json json{ { "scenario", scenario.name },
              { "file", scenario.file },
              { "end", nameOf( comparison.result() ) },
              { "events", comparison.eventsAlike() },
              { "step", jsonOf( comparison.step() ) },
              { "came", nullptr },
              { "expected", nullptr },
              { "published", jsonOf( comparison.published() ) },
              { "cut", comparison.result() == Result::cut ? Json( cutText ) : Json() } };
   if ( isDifferent ) {
      json[ "came" ] = jsonOf( comparison.came() );
      json[ "expected" ] = jsonOf( comparison.expected() );
   }
   out << Story::documentText( json );
}

}  // namespace

void Replay::declare( CLI::App & app ) {
   value( app, "FILE", file_, "The file that 'run --record' has written" )
      .required()
      .type( "FILE" )
      .check( problemOfName );
   run_.declarePlugin( app );
   flag( app, "--json", isJson_, "Print one JSON document instead of text" );
   run_.declareTurnLimit( app );
}

Story::ExitCode Replay::perform( std::ostream & out ) {
   Record::Reader reader( file_ );
   ReplayInputs const inputs( reader );
   Scenario::Model const scenario = inputs.scenario();
   ScenarioRun const what{
      scenario, configOf( run_.plugin(), inputs.setup() ), {}, run_.turnLimit()
   };
   Comparison comparison( reader );
   Story::Outcome outcome;
   play( what, comparison, outcome );
   checkLoaded( comparison );
   if ( isJson_ ) {
      printJson( comparison, reader.cutText(), scenario, out );
   } else if ( comparison.result() != Result::open ) {
      print( comparison, reader.cutText(), scenario.name, run_.plugin(), out );
   }
   tellInterruption( outcome );
   return exitCodeOf( comparison, outcome );
}

}  // namespace CommandLine
