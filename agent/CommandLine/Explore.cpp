#include <CommandLine/Explore.h>

#include <iostream>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <CommandLine/FindingsText.h>
#include <CommandLine/ProgressLine.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <Exploring/Catalogue.h>
#include <Process/Workers.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Text/Numbers.h>

#include <unistd.h>

namespace CommandLine {

namespace {

using Exploring::Exploration;
using Exploring::Findings;
using Exploring::Sequence;

// --- The branches

std::string const kNoFindings = "error: ";

// What a worker sends: the findings of its branch, or why there are none.
std::string resultOf( Exploration const & exploration, Host::AgentConfig const & config,
                      Exploring::Branch const & branch, Exploring::Limits const & limits ) {
   try {
      return encoded( branch, explored( exploration, config, branch, limits ) );
   } catch ( std::exception const & error ) {
      return kNoFindings + error.what();
   }
}

// Takes the results of the workers.
class Taking {
 public:
   explicit Taking( Exploring::Share & share ) : share_( share ) {}

   void take( Process::Worked const & worked, std::string const & file ) {
      if ( !worked.result ) {
         throw Story::InputError( "the process that tried a branch of " + file + " ended with " +
                                  worked.end + ", without a result" );
      }
      if ( worked.result->starts_with( kNoFindings ) ) {
         throw Story::InputError( file + ": " + worked.result->substr( kNoFindings.size() ) );
      }
      auto const [ branch, findings ] = Exploring::decoded( *worked.result );
      share_.add( branch, findings );
      ++count_;
   }
   std::string progressText() const {
      return fmt::format( "{} {}", ProgressLine::bar( count_, share_.open().size() ),
                          Story::counted( share_.findings().counts.sequences, "sequence" ) );
   }

 private:
   Exploring::Share & share_;
   std::size_t count_ = 0;
};

// --- The shards

std::optional< std::pair< U32, U32 > > shardIn( std::string const & text ) {
   std::size_t const slash = text.find( '/' );
   auto const number = Text::numberIn< U32 >( text.substr( 0, slash ) );
   auto const of = slash == std::string::npos ? std::optional< U32 >()
                                              : Text::numberIn< U32 >( text.substr( slash + 1 ) );
   bool const isShard = number && of && *number >= 1 && *number <= *of;
   return isShard ? std::optional( std::pair( *number, *of ) ) : std::nullopt;
}

}  // namespace

void Explore::declare( CLI::App & app ) {
   app.add_option( "FILE", words_,
                   "The exploration's file; or 'merge', that file, and files of results" )
      ->required()
      ->check( problemOfName );
   app.add_option( "--length", length_,
                   "The events of the longest sequence, in place of the file's" )
      ->check( CLI::Range( 1U, static_cast< U32 >( Exploration::kLongest ) ) );
   app.add_option( "--shard", shardText_, "Try the I-th of N shares alone" )->type_name( "I/N" );
   app.add_option( "--results", results_,
                   "Keep the results in this file, and go on with those that are there" )
      ->type_name( "FILE" )
      ->check( problemOfName );
   app.add_option( "--catalogue", catalogue_,
                   "Fail when other findings are made than those of this file" )
      ->type_name( "FILE" )
      ->check( problemOfName );
   app.add_option( "--known", known_,
                   "Name the scenarios below this folder that end like a finding, and fail when "
                   "there is none" )
      ->type_name( "FOLDER" )
      ->check( problemOfName );
   app.add_option( "--write", folder_,
                   "Write the catalogue, and a scenario for each finding, into this folder" )
      ->type_name( "FOLDER" )
      ->check( problemOfName );
   jobs_.declare( app );
   app.add_flag( "--json", isJson_, "Print one JSON document instead of text" );
   run_.declarePlugin( app );
   run_.declareTurnLimit( app );
}

void Explore::readWords() {
   run_.readWords();
   if ( isMerge() && words_.size() < 3 ) {
      throw CLI::ValidationError( "merge", "an exploration and files of results are expected" );
   }
   if ( !isMerge() && words_.size() != 1 ) {
      throw CLI::ValidationError( "FILE", "one exploration is expected" );
   }
   if ( !shardText_.empty() ) {
      auto const shard = shardIn( shardText_ );
      if ( !shard ) {
         throw CLI::ValidationError( "--shard",
                                     "'" + shardText_ + "' is no share; give one such as 1/4" );
      }
      shard_ = { shard->first, shard->second };
   }
}

Host::AgentConfig Explore::config( Exploration const & exploration ) const {
   Host::AgentConfig config;
   config.scenario = exploration.file().string();
   config.plugin = run_.plugin();
   return config;
}

Findings Explore::explore( Exploration const & exploration, std::size_t length,
                           int & signal ) const {
   Host::AgentConfig config = this->config( exploration );
   config.lastStep = static_cast< U32 >( exploration.firstEvent() );
   Exploring::Share share( exploration, length, shard_, results_ );
   auto const work = [ & ]( std::size_t number ) {
      return resultOf( exploration, config, share.open()[ number ], { length, run_.turnLimit() } );
   };
   ProgressLine line( std::cerr );
   Taking taking( share );
   auto const take = [ & ]( std::size_t, Process::Worked const & worked ) {
      taking.take( worked, exploration.file().string() );
   };
   auto const progress = [ & ] {
      if ( isTerminal( STDERR_FILENO ) ) {
         line.advance( taking.progressText() );
      }
   };
   signal = Process::workAll( { share.open().size(), jobs_.count(), work, take, progress } );
   line.clear();
   return share.findings();
}

Findings Explore::merged( Exploration const & exploration, std::size_t length ) const {
   std::map< Sequence, Findings > results;
   for ( std::size_t n = 2; n < words_.size(); ++n ) {
      auto more = Exploring::resultsIn( words_[ n ], exploration, length );
      results.merge( more );
   }
   Findings all;
   std::size_t missing = 0;
   auto const branches = branchesOf( exploration, length );
   for ( Exploring::Branch const & branch : branches ) {
      auto const found = results.find( branch.begin );
      if ( found == results.end() ) {
         ++missing;
      } else {
         all.add( found->second );
      }
   }
   if ( missing != 0 ) {
      throw Story::InputError(
         fmt::format( "{} of {} branches are in none of these files; run the "
                      "shares that are missing, each to its end",
                      missing, branches.size() ) );
   }
   return all;
}

// Without a catalogue, every finding is as expected.
bool Explore::isAsInCatalogue( Findings const & findings ) const {
   if ( catalogue_.empty() ) {
      return true;
   }
   auto const expected = Exploring::catalogueIn( catalogue_ );
   auto const found = catalogueOf( findings );
   auto const tell = [ & ]( char const * what, auto const & lines, auto const & others ) {
      for ( std::string const & line : lines ) {
         if ( !others.contains( line ) ) {
            std::cerr << what << ": " << line << '\n';
         }
      }
   };
   tell( "new", found, expected );
   tell( "vanished", expected, found );
   return found == expected;
}

// Without a folder of scenarios, every finding is known.
bool Explore::isKnown( Findings const & findings, Exploring::KnownLimits const & limits ) const {
   bool isKnown = true;
   for ( auto const & [ key, found ] : findings.all ) {
      if ( !known_.empty() && !limits.contains( key ) ) {
         std::cerr << "shown by no scenario: " << lineOf( key ) << '\n';
         isKnown = false;
      }
   }
   return isKnown;
}

Story::ExitCode Explore::perform( std::ostream & out ) {
   Exploration const exploration( words_[ isMerge() ? 1 : 0 ] );
   std::size_t const length = length_.value_or( static_cast< U32 >( exploration.length() ) );
   int signal = 0;
   Findings const findings =
      isMerge() ? merged( exploration, length ) : explore( exploration, length, signal );
   if ( signal != 0 ) {
      std::cerr << "interrupted"
                << ( results_.empty() ? "" : "; the same command goes on with the rest" ) << '\n';
      return Story::exitCodeOf( signal );
   }
   if ( !folder_.empty() ) {
      writeFindings( folder_, exploration, findings );
   }
   Exploring::KnownLimits limits;
   if ( !known_.empty() ) {
      limits = Exploring::knownLimitsIn( known_, config( exploration ), jobs_.count() );
   }
   if ( isJson_ ) {
      out << Story::documentText( jsonOf( exploration, findings, limits ) );
   } else {
      print( exploration, findings, limits, out );
   }
   bool const isSame = isAsInCatalogue( findings );
   return isKnown( findings, limits ) && isSame ? Story::ExitCode::Held
                                                : Story::ExitCode::ExpectationFailed;
}

}  // namespace CommandLine
