#include <CommandLine/Shrink.h>

#include <iostream>

#include <fmt/format.h>

#include <CommandLine/ProgressLine.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <Story/InputError.h>
#include <Story/Wording.h>
#include <Text/Printable.h>

#include <unistd.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;
using Scenario::Yaml;
using Shrinking::Ending;
using Shrinking::sizeOf;

// An ending that can be looked for.
void check( Ending const & ending, std::string const & file ) {
   if ( !ending.badInput.empty() ) {
      throw Story::InputError( ending.badInput );
   }
   if ( ending.isWell() ) {
      throw Story::InputError( file +
                               " ends well, so there is nothing to look for; give a scenario that "
                               "fails or stops, or take the expectation of its stop out" );
   }
}

}  // namespace

void Shrink::declare( CLI::App & app ) {
   scenario_.declare( app, ScenarioWords::Answers::text );
   output_.declare( app );
   jobs_.declare( app );
}

Ending Shrink::run( Scenario::Model const & scenario ) const {
   Shrinking::EndingTaken taken;
   runScenario( { scenario, scenario_.config(), {}, scenario_.turnLimit() }, taken );
   return taken.ending();
}

Yaml Shrink::shrunk( Yaml const & document, Shrinking::Trials & trials ) {
   return Shrinking::shrunk( document, [ & ]( Shrinking::Candidates const & candidates ) {
      auto const found = trials.firstThatHolds( candidates );
      if ( found ) {
         left_ = sizeOf( candidates.document( *found ) );
      }
      return found;
   } );
}

Story::ExitCode Shrink::compareWithRecord( Scenario::Model const & scenario ) const {
   Story::Outcome outcome;
   runScenario( { scenario, scenario_.config(), {}, scenario_.turnLimit(), scenario_.record() }, {},
                outcome );
   return outcome.interrupted() ? outcome.exitCode() : Story::ExitCode::Held;
}

std::string Shrink::textOf( Yaml document, Ending const & ending, Sizes const & sizes,
                            WholeScenario const & source ) const {
   FilesBeside const files = filesBeside();
   document = files.taken( std::move( document ), source.root );
   return fmt::format( "# {}, made shorter: {}; of {}\n# It ends as follows: {}\n{}{}",
                       Text::printable( scenario_.nameOf( source ) ), sizes.after, sizes.before,
                       Text::printable( ending.words() ), files.comment( document ),
                       pageOf( document ) );
}

Story::ExitCode Shrink::search( WholeScenario const & source, std::ostream & out ) {
   fs::path const place = fs::absolute( output_.place( source.model.name + "-short" ) );
   Yaml const document = source.whole.document( place, source.whole.steps() );
   left_ = sizeOf( document );

   ProgressLine line( std::cerr );
   Shrinking::Trials * told = nullptr;
   bool const isWatched = isTerminal( STDERR_FILENO );
   auto const progress = [ & ] {
      if ( isWatched && told ) {
         line.advance( fmt::format( "{}; {} left", Story::counted( told->runs(), "run" ), left_ ) );
      }
   };
   auto const runOne = [ this ]( Scenario::Model const & scenario ) { return run( scenario ); };
   Shrinking::Trials trials( { runOne, place, source.root, jobs_.count(), progress } );
   Ending const ending = trials.endingOf( document );
   if ( trials.signal() != 0 ) {
      return Story::exitCodeOf( trials.signal() );
   }
   check( ending, scenario_.nameOf( source ) );
   trials.lookFor( ending );
   told = &trials;
   Yaml const result = shrunk( document, trials );
   line.clear();
   Sizes const sizes{ sizeOf( document ), sizeOf( result ) };
   output_.write( textOf( result, ending, sizes, source ), out );
   out.flush();
   ( output_.isNamed() ? out : std::cerr )
      << fmt::format( "{}after {}: {} of {}\n", trials.signal() == 0 ? "" : "interrupted ",
                      Story::counted( trials.runs(), "run" ), sizes.after, sizes.before );
   return trials.signal() == 0 ? Story::ExitCode::Held : Story::exitCodeOf( trials.signal() );
}

Story::ExitCode Shrink::perform( std::ostream & out ) {
   filesBeside().check();
   std::ignore = scenario_.config();  // a missing plug-in is no ending
   WholeScenario const source = scenario_.readWhole();
   auto const code = scenario_.record() ? compareWithRecord( source.model ) : Story::ExitCode::Held;
   return code == Story::ExitCode::Held ? search( source, out ) : code;
}

}  // namespace CommandLine
