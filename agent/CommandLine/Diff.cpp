#include <CommandLine/Diff.h>

#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>

namespace CommandLine {

void Diff::declare( CLI::App & app ) {
   scenario_.declare( app );
   value( app, "OTHER", other_,
          "The other scenario's file; without one, two steps of the same scenario are "
          "compared" )
      .type( "FILE" )
      .check( problemOfName );
   after_.declare( app,
                   "Take the first switch after this step, 0 for start-up, or at this time of a "
                   "record, as in 2.5s; by default after the last one" );
   against_.declare( app, "Take the second switch after this step, likewise" );
   declareOnly( app, only_ );
}

void Diff::readWords() {
   scenario_.readWords();
   after_.readWords();
   against_.readWords();
   if ( other_.empty() && !after_.isGiven() && !against_.isGiven() ) {
      refuseValue( "OTHER",
                   "give a second scenario, or --after and --against for two steps of this one" );
   }
}

Story::ExitCode Diff::read( ScenarioFile const & file, Moment const & moment,
                            Story::Table & state ) const {
   Scenario::Model const scenario = file.read();
   ScenarioRun what{ scenario, file.config(), {}, scenario_.turnLimit(), file.record() };
   what.config.plugin = scenario_.plugin();
   moment.limit( what.config, scenario, file.record() );
   return stateAfter( std::move( what ), state );
}

Story::ExitCode Diff::perform( std::ostream & out ) {
   ScenarioFile const file( scenario_.file() );
   Story::Table before;
   Story::Table after;
   auto code = read( file, after_, before );
   if ( code == Story::ExitCode::Held ) {
      code = read( other_.empty() ? file : ScenarioFile( other_ ), against_, after );
   }
   return code == Story::ExitCode::Held
             ? print( differencesBetween( before, after, only_ ), scenario_.isJson(), out )
             : code;
}

}  // namespace CommandLine
