#include <CommandLine/Dump.h>

#include <algorithm>
#include <iostream>

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <CommandLine/Comparison.h>
#include <CommandLine/ProgressLine.h>
#include <CommandLine/RunScenario.h>
#include <CommandLine/Terminal.h>
#include <FeatureFiles/Reader.h>
#include <Process/BoundedFile.h>
#include <Story/Wording.h>
#include <Text/Printable.h>

#include <unistd.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;
using Scenario::Yaml;

// A signal that has ended a run, and with it the search for a dump.
struct Ended {
   int signal;
};

// An object of booleans.
bool isFeatureFile( fs::path const & file ) {
   if ( file.extension() != ".json" ) {
      return false;
   }
   auto const text = Process::contentOf( file, FeatureFiles::Reader::kLongest );
   auto const content = nlohmann::json::parse( text.value_or( "" ), nullptr, false );
   return content.is_object() && !content.empty() &&
          std::all_of( content.begin(), content.end(),
                       []( nlohmann::json const & value ) { return value.is_boolean(); } );
}

bool hasFeatureFiles( fs::path const & folder ) {
   std::error_code error;
   fs::directory_iterator const files( folder, error );
   return !error &&
          std::any_of( begin( files ), end( files ), []( fs::directory_entry const & one ) {
             return isFeatureFile( one.path() );
          } );
}

// The whole scenario without steps, and those up to that one.
Dumping::Original originalOf( WholeScenario const & source, fs::path const & place,
                              std::size_t last ) {
   auto placed = source.whole.steps();
   placed.resize( last );
   Dumping::Original original{ source.whole.document( place, {} ), listOf( place, placed ).parts };
   if ( !hasFeatureFiles( source.root.placeOf( source.whole.features() ) ) ) {
      original.scenario.remove( "features" );
   }
   return original;
}

// --- What stands above it

constexpr std::size_t kMostDifferences = 3;

constexpr std::size_t kLongestStep = 60;

// "step 9 (ready subagents::l2Ready)"; the words of a long step are left out.
std::string stepText( Scenario::Model const & model, std::size_t step ) {
   if ( step == 0 ) {
      return "start-up";
   }
   std::string const words = model.steps[ step - 1 ].action->description();
   return fmt::format( "step {}{}", step,
                       words.size() > kLongestStep ? "" : fmt::format( " ({})", words ) );
}

std::vector< std::string > keptText( Dumping::Dump const & dump ) {
   std::vector< std::string > lines{ fmt::format(
      "The way there matters, so {} kept. A fresh start would differ:",
      dump.keptSteps == 1 ? "one step is" : fmt::format( "{} steps are", dump.keptSteps ) ) };
   for ( std::string const & difference : dump.differences ) {
      if ( lines.size() > kMostDifferences ) {
         lines.push_back(
            fmt::format( "   and {} more", dump.differences.size() - kMostDifferences ) );
         break;
      }
      lines.push_back( "   " + difference );
   }
   return lines;
}

// `subject` is the switch and the moment.
std::string heading( std::string const & subject, Dumping::Original const & original,
                     Dumping::Dump const & dump ) {
   std::vector< std::string > lines{ subject };
   if ( !dump.isSame ) {
      lines.emplace_back( "It does NOT lead to the same state: no scenario was found that does." );
   }
   if ( dump.keptSteps != 0 ) {
      auto const kept = keptText( dump );
      lines.insert( lines.end(), kept.begin(), kept.end() );
   }
   if ( dump.hasOtherEntryNumbers ) {
      lines.emplace_back( "Its rules have other numbers in the chip." );
   }
   Dumping::Past const past = Dumping::pastOf( original.steps );
   if ( past.hasFrames ) {
      lines.emplace_back( "Its chip has learned no addresses." );
   }
   if ( past.hasFaults && dump.keptSteps == 0 ) {
      lines.emplace_back( "No call of its chip is still to fail (fail-call)." );
   }
   if ( Yaml const * const features = dump.scenario.find( "features" ) ) {
      lines.push_back( "It needs the feature files in " + features->text + '.' );
   }
   std::string text;
   for ( std::string const & line : lines ) {
      text += "# " + Text::printable( line ) + '\n';
   }
   return text;
}

}  // namespace

void Dump::declare( CLI::App & app ) {
   scenario_.declare( app, ScenarioWords::Answers::text );
   after_.declare( app,
                   "Write the switch after this step, 0 for start-up, or of a record after a time "
                   "such as 2.5s; after the last one if none is given" );
   output_.declare( app );
}

void Dump::readWords() {
   scenario_.readWords();
   after_.readWords();
}

ScenarioRun Dump::runOf( Scenario::Model const & model ) const {
   ScenarioRun what{ model, scenario_.config(), {}, scenario_.turnLimit() };
   what.config.lastStep.reset();
   return what;
}

ScenarioRun Dump::runUntilThen( Scenario::Model const & model ) const {
   ScenarioRun what{ model, scenario_.config(), {}, scenario_.turnLimit(), scenario_.record() };
   after_.limit( what.config, model, scenario_.record() );
   if ( !what.config.lastStep ) {
      what.config.lastStep = static_cast< U32 >( model.ownSteps );
   }
   return what;
}

// The progress is told before each run.
Dumping::Switches Dump::switchesFor( WholeScenario const & source, fs::path const & place,
                                     std::function< void() > const & progress ) const {
   auto const stateOf = [ progress ]( ScenarioRun const & what ) {
      int signal = 0;
      progress();
      auto state = stateIfAny( what, signal );
      if ( signal != 0 ) {
         throw Ended{ signal };
      }
      return state;
   };
   auto const after = [ this, &source, stateOf ]( std::size_t step ) {
      ScenarioRun what = runOf( source.model );
      what.config.lastStep = static_cast< U32 >( step );
      return stateOf( what );
   };
   auto const of = [ this, &source, place,
                     stateOf ]( Yaml const & scenario ) -> std::optional< Story::Table > {
      try {
         Scenario::Model const tried =
            Steps::readScenarioText( Scenario::textOf( scenario ), place, {}, {}, source.root );
         return stateOf( runOf( tried ) );
      } catch ( Scenario::ReadError const & ) {  // its state needs steps, not words
         return std::nullopt;
      }
   };
   auto const between = []( Story::Table const & before, Story::Table const & now ) {
      return differencesBetween( before, now, {} );
   };
   return { after, of, between };
}

std::string Dump::textOf( Dumping::Dump dump, Dumping::Original const & original,
                          WholeScenario const & source, std::size_t last ) const {
   if ( Yaml const * const steps = dump.scenario.find( "steps" ); steps && steps->parts.empty() ) {
      dump.scenario.remove( "steps" );
   }
   FilesBeside const files = filesBeside();
   dump.scenario = files.taken( dump.scenario, source.root );
   std::string const subject =
      fmt::format( "The switch of {} after {}.", scenario_.nameOf( source ),
                   stepText( source.model, last ) );
   return heading( subject, original, dump ) + files.comment( dump.scenario ) +
          pageOf( dump.scenario );
}

Story::ExitCode Dump::dump( WholeScenario const & source, std::ostream & out ) const {
   ScenarioRun const what = runUntilThen( source.model );
   Story::Table state;
   auto const code = stateAfter( what, state );
   if ( code != Story::ExitCode::Held ) {
      return code;
   }
   std::size_t const last = *what.config.lastStep;
   fs::path const place = fs::absolute( output_.place( source.model.name + "-dump" ) );
   auto const original = originalOf( source, place, last );
   ProgressLine line( std::cerr );
   std::size_t runs = 0;
   auto const progress = [ &, isWatched = isTerminal( STDERR_FILENO ) ] {
      ++runs;
      if ( isWatched ) {
         line.advance( Story::counted( runs, "run" ) );
      }
   };
   auto dump = Dumping::dumped( original, state, switchesFor( source, place, progress ) );
   line.clear();
   output_.write( textOf( std::move( dump ), original, source, last ), out );
   return code;
}

Story::ExitCode Dump::perform( std::ostream & out ) {
   filesBeside().check();
   WholeScenario const source = scenario_.readWhole();
   try {
      return dump( source, out );
   } catch ( Ended const & ended ) {
      return Story::exitCodeOf( ended.signal );
   }
}

}  // namespace CommandLine
