#include <iostream>

#include <CommandLine/CaptureFolder.h>
#include <CommandLine/Commands.h>
#include <CommandLine/PluginFile.h>
#include <CommandLine/Progress.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <Story/HumanWriter.h>
#include <Story/JsonWriter.h>
#include <Text/Printable.h>

#include <unistd.h>

namespace CommandLine {

namespace {

// What the process of the agent prints goes to standard error, where the document does not stand.
class OutputEcho final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      if ( auto const * const line = std::get_if< Story::OutputLine >( &event ) ) {
         std::cerr << Text::printable( line->text ) << '\n';
      }
   }
};

Story::ExitCode runForPeople( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                              std::ostream & out ) {
   Story::HumanWriter writer( out, Story::Style( isColoured( STDOUT_FILENO ) ) );
   observers.push_back( &writer );
   Story::Outcome outcome;
   runScenario( what, std::move( observers ), outcome );
   return outcome.exitCode();
}

Story::ExitCode runForPrograms( ScenarioRun const & what,
                                std::vector< Story::Observer * > observers, std::ostream & out ) {
   Story::JsonWriter writer;
   OutputEcho echo;
   observers.insert( observers.end(), { &writer, &echo } );
   Story::Outcome outcome;
   runScenario( what, std::move( observers ), outcome );
   writer.write( out );
   tellInterruption( outcome );
   return outcome.exitCode();
}

}  // namespace

Story::ExitCode run( RunOptions const & options, std::ostream & out ) {
   Scenario::Model const scenario = Steps::readScenario( options.scenario );
   ScenarioRun const what{ scenario,
                           { .scenario = options.scenario.string(),
                             .plugin = pluginFile( options.plugin ),
                             .trace = options.trace,
                             .show = {},
                             .captures = captureFolder( options.captures, scenario ) },
                           options.ring,
                           options.turnLimit };
   Progress progress( std::cerr );
   std::vector< Story::Observer * > observers;
   if ( isTerminal( STDERR_FILENO ) ) {
      observers.push_back( &progress );
   }
   return options.isJson ? runForPrograms( what, std::move( observers ), out )
                         : runForPeople( what, std::move( observers ), out );
}

}  // namespace CommandLine
