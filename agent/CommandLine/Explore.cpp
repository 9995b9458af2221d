#include <CommandLine/Explore.h>

#include <iostream>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <CommandLine/ProgressLine.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <Exploring/Catalogue.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Testing/Workers.h>
#include <Text/Numbers.h>

#include <unistd.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;
using Exploring::Exploration;
using Exploring::Findings;
using Exploring::Sequence;
using Story::Json;

// --- The findings

// The events, one below the other.
std::string textOf( Exploration const & exploration, Sequence const & sequence ) {
   std::string text = sequence.empty() ? "      (the start itself)\n" : "";
   for ( U16 const event : sequence ) {
      text += "      - " + exploration.text( event ) + '\n';
   }
   return text;
}

void print( Exploration const & exploration, Findings const & findings, std::ostream & out ) {
   out << fmt::format( "{}: {}, which stand for {}; {} more changed nothing\n", exploration.name(),
                       Story::counted( findings.counts.sequences, "sequence" ),
                       findings.counts.standFor, findings.counts.without );
   for ( auto const & [ key, found ] : findings.all ) {
      out << fmt::format( "\n{}\n   in {}; the shortest:\n{}", Exploring::lineOf( key ),
                          Story::counted( found.sequences, "sequence" ),
                          textOf( exploration, found.shortest ) );
   }
}

Json jsonOf( Exploration const & exploration, Findings const & findings ) {
   Json found = Json::array();
   for ( auto const & [ key, one ] : findings.all ) {
      Json steps = Json::array();
      for ( U16 const event : one.shortest ) {
         steps.push_back( exploration.text( event ) );
      }
      found.push_back( { { "kind", nameOf( key.kind ) },
                         { "what", key.what },
                         { "sequences", one.sequences },
                         { "shortest", std::move( steps ) } } );
   }
   return { { "exploration", exploration.name() },        { "file", exploration.file().string() },
            { "sequences", findings.counts.sequences },   { "standFor", findings.counts.standFor },
            { "withoutEffect", findings.counts.without }, { "findings", std::move( found ) } };
}

// --- The branches

// The workers take files; here a file is the number of a branch.
std::vector< fs::path > numbersTo( std::size_t count ) {
   std::vector< fs::path > numbers;
   for ( std::size_t n = 0; n < count; ++n ) {
      numbers.emplace_back( std::to_string( n ) );
   }
   return numbers;
}

// Takes the results of the workers, each once.
class Taking {
 public:
   explicit Taking( Exploring::Share & share ) : share_( share ), isTaken_( share.open().size() ) {}

   void take( std::vector< Testing::Result > const & results ) {
      for ( std::size_t n = 0; n < results.size(); ++n ) {
         if ( results[ n ].isOver && !isTaken_[ n ] ) {
            isTaken_[ n ] = true;
            ++count_;
            take( results[ n ] );
         }
      }
   }
   std::string progressText() const {
      return fmt::format( "{} {}", ProgressLine::bar( count_, isTaken_.size() ),
                          Story::counted( share_.findings().counts.sequences, "sequence" ) );
   }

 private:
   void take( Testing::Result const & result ) {
      if ( result.isFailed() ) {
         throw Story::InputError( result.failures.front().what );
      }
      auto const [ branch, findings ] = Exploring::decoded( result.title );
      share_.add( branch, findings );
   }

   Exploring::Share & share_;
   std::vector< bool > isTaken_;
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

Findings Explore::explore( Exploration const & exploration, std::size_t length,
                           int & signal ) const {
   Host::AgentConfig config;
   config.scenario = exploration.file().string();
   config.plugin = run_.plugin();
   config.lastStep = static_cast< U32 >( exploration.model().ownSteps );
   Exploring::Share share( exploration, length, shard_, results_ );
   auto const work = [ & ]( fs::path const & number ) {
      Exploring::Branch const & branch = share.open().at( std::stoul( number.string() ) );
      Testing::Result result;
      result.isOver = true;
      try {
         result.title = encoded( branch, explored( exploration, config, branch,
                                                   { length, run_.turnLimit() } ) );
      } catch ( std::exception const & error ) {
         result.failures.push_back( { "", exploration.file().string() + ": " + error.what(), {} } );
      }
      return result;
   };
   ProgressLine line( std::cerr );
   Taking taking( share );
   auto const progress = [ & ]( std::vector< Testing::Result > const & results ) {
      taking.take( results );
      if ( isTerminal( STDERR_FILENO ) ) {
         line.advance( taking.progressText() );
      }
   };
   auto const tested =
      Testing::testAll( numbersTo( share.open().size() ), jobs_.count(), work, progress );
   line.clear();
   signal = tested.signal;
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
Story::ExitCode Explore::compare( Findings const & findings ) const {
   if ( catalogue_.empty() ) {
      return Story::ExitCode::Held;
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
   return found == expected ? Story::ExitCode::Held : Story::ExitCode::ExpectationFailed;
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
   if ( isJson_ ) {
      out << Story::documentText( jsonOf( exploration, findings ) );
   } else {
      print( exploration, findings, out );
   }
   return compare( findings );
}

}  // namespace CommandLine
