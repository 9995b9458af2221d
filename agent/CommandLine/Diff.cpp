#include <CommandLine/Diff.h>

#include <CLI/CLI.hpp>

#include <CommandLine/Usage.h>

namespace CommandLine {

void Diff::declare( CLI::App & app ) {
   scenario_.declare( app );
   app.add_option( "OTHER", other_,
                   "The other scenario's file; without one, two steps of the same scenario are "
                   "compared" )
      ->type_name( "FILE" )
      ->check( problemOfName );
   app.add_option( "--after", after_,
                   "Take the first switch after this step, 0 for start-up; by default after the "
                   "last one" )
      ->type_name( "STEP" );
   app.add_option( "--against", against_, "Take the second switch after this step, likewise" )
      ->type_name( "STEP" );
   declareOnly( app, only_ );
}

void Diff::readWords() {
   scenario_.readWords();
   if ( other_.empty() && !after_ && !against_ ) {
      throw CLI::ValidationError(
         "OTHER", "give a second scenario, or --after and --against for two steps of this one" );
   }
}

Story::ExitCode Diff::read( Side const & side, Story::Table & state ) const {
   Scenario::Model const scenario = Steps::readScenario( side.file );
   checkStep( side.option, side.after, scenario );
   ScenarioRun what{ scenario, scenario_.config(), {}, scenario_.turnLimit() };
   what.config.scenario = side.file.string();
   what.config.lastStep = side.after;
   return stateAfter( std::move( what ), state );
}

Story::ExitCode Diff::perform( std::ostream & out ) {
   Story::Table before;
   Story::Table after;
   auto code = read( { scenario_.file(), "--after", after_ }, before );
   if ( code == Story::ExitCode::Held ) {
      code = read( { other_.empty() ? scenario_.file() : other_, "--against", against_ }, after );
   }
   return code == Story::ExitCode::Held
             ? print( differencesBetween( before, after, only_ ), scenario_.isJson(), out )
             : code;
}

}  // namespace CommandLine
