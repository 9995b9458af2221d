#include <CommandLine/Test.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <tuple>

#include <fmt/format.h>

#include <CommandLine/ProgressLine.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Process/Descriptor.h>
#include <Process/SharedFolder.h>
#include <Story/InputError.h>
#include <Testing/Collection.h>
#include <Testing/JUnit.h>
#include <Testing/Judge.h>
#include <Testing/Report.h>

#include <fcntl.h>
#include <unistd.h>

namespace CommandLine {

namespace {

using Clock = std::chrono::steady_clock;

// A file that cannot be written is refused before anything runs.
class JUnitFile {
 public:
   explicit JUnitFile( std::filesystem::path name ) : name_( std::move( name ) ) {
      if ( !name_.empty() ) {
         int const flags = O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | Process::flagsToOpen( name_ );
         file_ = Process::Descriptor( open( name_.c_str(), flags, kUsualRights ) );
         check( file_.isOpen(), "give a file that can" );
      }
   }

   void write( std::vector< Testing::Result > const & results, double seconds ) {
      if ( !name_.empty() ) {
         std::ostringstream text;
         Testing::writeJUnit( results, seconds, text );
         check( file_.write( text.str() ), "make room and test again" );
      }
   }

 private:
   static constexpr int kUsualRights = 0666;  // less those that the user takes from new files

   void check( bool isFine, std::string const & remedy ) const {
      if ( !isFine ) {
         throw Story::InputError( "--junit " + name_.string() + " cannot be written; " + remedy );
      }
   }

   std::filesystem::path name_;  // empty: no file
   Process::Descriptor file_;
};

std::string progressText( std::vector< Testing::Result > const & results ) {
   auto const over =
      static_cast< std::size_t >( std::count_if( results.begin(), results.end(),
                                                 []( auto const & one ) { return one.isOver; } ) );
   return fmt::format( "{} {} of {} scenarios, {} failed",
                       ProgressLine::bar( over, results.size() ), over, results.size(),
                       Testing::failedIn( results ) );
}

Story::ExitCode exitCodeOf( Testing::Tested const & tested ) {
   if ( tested.signal != 0 ) {
      return Story::exitCodeOf( tested.signal );
   }
   return Testing::failedIn( tested.results ) == 0 ? Story::ExitCode::Held
                                                   : Story::ExitCode::ExpectationFailed;
}

}  // namespace

void Test::declare( CLI::App & app ) {
   value( app, "PATH", paths_, "Scenarios, and folders with scenarios" )
      .required()
      .check( problemOfName );
   jobs_.declare( app );
   value( app, "--junit", junit_, "Write the results into this file, in the form of JUnit" )
      .type( "FILE" )
      .check( problemOfName );
   flag( app, "--verbose", isVerbose_, "Print a line for each scenario, and the slowest ones" );
   words_.declarePlugin( app );
   words_.declareTurnLimit( app );
}

Testing::Result Test::run( std::filesystem::path const & file ) const {
   Testing::Judge judge;
   try {
      Scenario::Model const scenario = Steps::readScenario( file );
      ScenarioRun what{ scenario, {}, {}, words_.turnLimit() };
      what.config.scenario = file.string();
      what.config.plugin = words_.plugin();
      runScenario( what, judge );
      return judge.result();
   } catch ( Scenario::ReadError const & error ) {
      Testing::Result result;
      result.isOver = true;
      for ( Scenario::Problem const & problem : error.problems() ) {
         result.failures.push_back( { "", problem.text(), {} } );
      }
      return result;
   } catch ( std::exception const & error ) {
      Testing::Result result = judge.result();
      result.isOver = true;
      result.failures.push_back( Testing::mistake( error.what() ) );
      return result;
   }
}

Testing::Tested Test::testAll( std::vector< std::filesystem::path > const & files,
                               Testing::Report & report ) const {
   ProgressLine line( std::cerr );
   bool const isWatched = isTerminal( STDERR_FILENO );
   auto const work = [ this ]( std::filesystem::path const & file ) { return run( file ); };
   auto const progress = [ & ]( std::vector< Testing::Result > const & results ) {
      if ( report.hasMore( results ) ) {
         line.clear();
         report.tellOver( results );
      }
      if ( isWatched ) {
         line.advance( progressText( results ) );
      }
   };
   Testing::Tested tested = Testing::testAll( files, jobs_.count(), work, progress );
   line.clear();
   return tested;
}

// The results would replace it.
void Test::checkJUnit( std::vector< std::filesystem::path > const & files ) const {
   for ( std::filesystem::path const & file : files ) {
      std::error_code error;
      if ( std::filesystem::equivalent( file, junit_, error ) ) {
         throw Story::InputError( "--junit: " + file.string() +
                                  " is a scenario to be tested; name another file" );
      }
   }
}

Story::ExitCode Test::perform( std::ostream & out ) {
   auto const begin = Clock::now();
   auto const files = Testing::scenariosAmong( paths_ );
   if ( files.empty() ) {
      throw Story::InputError(
         "there is no scenario; give a folder with scenarios, which are "
         "files *.yaml with the word 'scenario'" );
   }
   checkJUnit( files );
   std::ignore = words_.plugin();  // a missing one is no failure of every scenario
   JUnitFile junit( junit_ );
   Testing::Report report( out, Story::Style( isColoured( STDOUT_FILENO ) ), isVerbose_ );
   Testing::Tested const tested = testAll( files, report );
   double const seconds = std::chrono::duration< double >( Clock::now() - begin ).count();
   report.tellEnd( tested, seconds );
   junit.write( tested.results, seconds );
   return exitCodeOf( tested );
}

}  // namespace CommandLine
