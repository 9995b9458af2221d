#include <CommandLine/Run.h>

#include <iostream>
#include <map>

#include <CommandLine/CaptureFolder.h>
#include <CommandLine/PartOfStory.h>
#include <CommandLine/Progress.h>
#include <CommandLine/Recording.h>
#include <CommandLine/ReportFile.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Quelm/Error.h>
#include <Steps/ExpectedStop.h>
#include <Story/EventLines.h>
#include <Story/HumanWriter.h>
#include <Story/InputError.h>
#include <Story/JsonWriter.h>
#include <Text/Printable.h>
#include <Trace/Trace.h>

#include <unistd.h>

namespace CommandLine {

namespace {

// Prints the output of the agent's process on standard error, apart from the document.
class OutputEcho final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      if ( auto const * const line = std::get_if< Story::OutputLine >( &event ) ) {
         std::cerr << Text::printable( line->text ) << '\n';
      }
   }
};

Story::ExitCode runForPeople( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                              std::optional< U32 > step, std::ostream & out ) {
   bool const colours = isColoured( STDOUT_FILENO );
   Story::HumanWriter writer( out, Story::Style( colours ) );
   PartOfStory one( step.value_or( 0 ), step.value_or( 0 ), out, colours );
   observers.push_back( step ? static_cast< Story::Observer * >( &one ) : &writer );
   Story::Outcome outcome;
   runScenario( what, std::move( observers ), outcome );
   tellBadInput( outcome );
   if ( step ) {
      one.tellEarlyEnd();
   }
   return outcome.exitCode();
}

Story::ExitCode runForPrograms( ScenarioRun const & what,
                                std::vector< Story::Observer * > observers,
                                std::optional< U32 > step, std::ostream & out ) {
   Story::JsonWriter writer( step );
   OutputEcho echo;
   observers.insert( observers.end(), { &writer, &echo } );
   Story::Outcome outcome;
   runScenario( what, std::move( observers ), outcome );
   tellBadInput( outcome );
   writer.write( out );
   tellInterruption( outcome );
   return outcome.exitCode();
}

Story::ExitCode runForListeners( ScenarioRun const & what,
                                 std::vector< Story::Observer * > observers, std::ostream & out ) {
   Story::EventLines lines( out );
   observers.push_back( &lines );
   Story::Outcome outcome;
   runScenario( what, std::move( observers ), outcome );
   tellBadInput( outcome );
   tellInterruption( outcome );
   return outcome.exitCode();
}

// Reads "HANDLE/LEVELS".
Scenario::TraceLevels traceOf( std::string const & text ) {
   std::size_t const slash = text.rfind( '/' );
   Scenario::TraceLevels const trace{ text.substr( 0, slash ),
                                      slash == std::string::npos ? "" : text.substr( slash + 1 ) };
   if ( slash == std::string::npos || trace.handles.empty() ) {
      refuseValue( "--trace", "'" + text +
                                 "' is not HANDLE/LEVELS such as "
                                 "'VornalEvpn*/0-5'" );
   }
   try {
      Trace::levelsFromText( trace.levels );
   } catch ( Quelm::TextError const & error ) {
      refuseValue( "--trace", error.what() );
   }
   return trace;
}

// Two outputs in one file would destroy each other.
void checkApart( std::map< std::string, std::filesystem::path > const & outputs ) {
   std::map< std::filesystem::path, std::string > options;
   for ( auto const & [ option, file ] : outputs ) {
      std::error_code error;
      auto const [ other, isNew ] =
         options.emplace( std::filesystem::weakly_canonical( file, error ), option );
      if ( !file.empty() && !error && !isNew ) {
         throw Story::InputError( other->second + " and " + option + " both name " + file.string() +
                                  "; name two files" );
      }
   }
}

std::optional< std::filesystem::path > ifNamed( std::filesystem::path const & file ) {
   return file.empty() ? std::nullopt : std::optional( file );
}

}  // namespace

void Run::declare( CLI::App & app ) {
   scenario_.declare( app, ScenarioWords::Answers::textOrJson, ScenarioWords::Takes::scenarios );
   Word const events = flag( app, "--events", isEvents_,
                             "Print every event while it happens, each as a line of JSON" )
                          .excludes( "--json" );
   value( app, "--trace", traceTexts_,
          "Show the traces of a handle at these levels ('VornalEvpn*/0-5,9'); can be "
          "given several times" )
      .type( "HANDLE/LEVELS" )
      .repeatable();
   value( app, "--until", until_, "End with this step, 0 for start-up" ).type( "STEP" );
   value( app, "--then", then_,
          "Carry out one more step, in the words of a scenario ('withdraw: { vteps: [ "
          "10.0.0.2 ] }'); can be given several times" )
      .type( "STEP" )
      .repeatable();
   value( app, "--step", step_, "End with this step, and tell its part of the story alone" )
      .type( "STEP" )
      .excludes( "--until" )
      .excludes( events );
   Word const whatIf =
      value( app, "--what-if", whatIf_,
             "Show what one more step would change, instead of the story; can be given "
             "several times" )
         .type( "STEP" )
         .repeatable()
         .excludes( "--step" )
         .excludes( events );
   declareOnly( app, only_ ).needs( whatIf );
   value( app, "--record", record_,
          "Keep the run with all its inputs in this file, for 'vornal replay'" )
      .type( "FILE" )
      .check( problemOfName )
      .excludes( whatIf );
   value( app, "--ring", ring_, "Write the binary trace ring into this file" )
      .type( "FILE" )
      .check( problemOfName );
   value( app, "--pcap-out", captures_,
          "Write the frames that leave each port into this folder, as captures" )
      .type( "DIR" )
      .check( problemOfName );
   value( app, "--report", report_,
          "Write the run as a web page into this file: the switch drawn, the steps, the "
          "rules, and each frame with its explanation" )
      .type( "FILE" )
      .check( problemOfName )
      .excludes( whatIf );
}

void Run::readWords() {
   scenario_.readWords();
   for ( std::string const & text : traceTexts_ ) {
      trace_.push_back( traceOf( text ) );
   }
}

Scenario::Model Run::read( std::vector< std::string > const & whatIf ) const {
   std::vector< Scenario::AddedStep > added;
   for ( std::string const & step : then_ ) {
      added.push_back( { "--then", step } );
   }
   for ( std::string const & step : whatIf ) {
      added.push_back( { "--what-if", step } );
   }
   if ( scenario_.record() ) {
      throw Story::InputError( scenario_.file().string() +
                               ": this is the record of a run; 'vornal replay' plays it again" );
   }
   Scenario::Model scenario = scenario_.read( added );
   if ( until_ ) {
      checkStep( "--until", until_, scenario );
      endWith( scenario, *until_ );
   }
   if ( auto const step = Steps::firstNotReached( scenario ) ) {
      throw Story::InputError( scenario.sources.placeOf( scenario.steps[ *step ].line ) +
                               ": a step before is expected to stop the process, so this one is "
                               "never carried out; end the story earlier with --until" );
   }
   return scenario;
}

Story::ExitCode Run::compare( std::ostream & out ) const {
   Scenario::Model const before = read();
   Scenario::Model const after = read( whatIf_ );
   ScenarioRun const first{ before, scenario_.config(), {}, scenario_.turnLimit() };
   ScenarioRun const second{ after, scenario_.config(), {}, scenario_.turnLimit() };
   return printChange( first, second, { only_, scenario_.isJson() }, out );
}

Record::Setup Run::setup() const {
   Record::Setup setup;
   for ( std::string const & step : then_ ) {
      setup.added.push_back( { "--then", step } );
   }
   for ( Scenario::TraceLevels const & trace : trace_ ) {
      setup.trace.push_back( { trace.handles, trace.levels } );
   }
   setup.until = until_;
   setup.lastStep = step_;
   return setup;
}

Story::ExitCode Run::tell( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                           std::ostream & out ) const {
   if ( isEvents_ ) {
      return runForListeners( what, std::move( observers ), out );
   }
   return scenario_.isJson() ? runForPrograms( what, std::move( observers ), step_, out )
                             : runForPeople( what, std::move( observers ), step_, out );
}

Story::ExitCode Run::perform( std::ostream & out ) {
   if ( !whatIf_.empty() ) {
      return compare( out );
   }
   checkApart( { { "--record", record_ }, { "--report", report_ }, { "--ring", ring_ } } );
   Scenario::Model const scenario = read();
   ScenarioRun what{ scenario, scenario_.config(), ifNamed( ring_ ), scenario_.turnLimit() };
   std::optional< ReportFile > report;
   if ( !report_.empty() ) {
      report.emplace( report_, scenario ).configure( what.config );
   }
   what.config.trace = trace_;
   what.config.captures = captureFolder( ifNamed( captures_ ), scenario );
   if ( step_ ) {
      checkStep( "--step", step_, scenario, scenario.steps.size() );
      what.config.lastStep = step_;
   }
   Progress progress( std::cerr );
   std::vector< Story::Observer * > observers;
   if ( isTerminal( STDERR_FILENO ) ) {
      observers.push_back( &progress );
   }
   std::optional< Recording > recording;
   if ( !record_.empty() ) {
      observers.push_back( &recording.emplace( record_, setup(), scenario ) );
   }
   if ( report ) {
      observers.push_back( &report->observer() );
   }
   auto const code = tell( what, std::move( observers ), out );
   if ( report ) {
      report->write();
   }
   return code;
}

}  // namespace CommandLine
