#include <CommandLine/Explore.h>

#include <iostream>

#include <fmt/format.h>
#include <CLI/CLI.hpp>

#include <CommandLine/ProgressLine.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <Exploring/Catalogue.h>
#include <Exploring/Faults.h>
#include <Process/SharedFolder.h>
#include <Process/Workers.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Testing/Collection.h>
#include <Text/Numbers.h>
#include <Text/Printable.h>

#include <unistd.h>

namespace CommandLine {

namespace {

using Exploring::Exploration;
using Exploring::Findings;
using Exploring::Sequence;

constexpr std::size_t kPieces = 16;  // of all faults, at least; a worker has several

// --- The branches

// Takes the results of the workers.
class Taking {
 public:
   explicit Taking( Exploring::Share & share ) : share_( share ) {}

   void take( Process::Worked const & worked, std::string const & file ) {
      auto const [ branch, findings ] = Exploring::findingsIn( worked, file );
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

// --- The faults

// A fault with the number of its scenario in it, behind its kind: of faults that end alike, the
// kind says which one is told.
Sequence withScenario( Sequence fault, std::size_t scenario ) {
   fault.insert( fault.begin() + 1, static_cast< U16 >( scenario ) );
   return fault;
}
std::size_t scenarioOf( Sequence const & fault ) {
   return fault.at( 1 );
}
Sequence withoutScenario( Sequence fault ) {
   fault.erase( fault.begin() + 1 );
   return fault;
}

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
                   "The exploration's file; or 'merge', that file, and files of results; with "
                   "--faults, scenarios, or folders with scenarios" )
      ->required()
      ->check( problemOfName );
   CLI::Option * const faults =
      app.add_flag( "--faults", areFaults_,
                    "In the runs of scenarios, let each call of the chip fail, each request for an "
                    "entry find no room, and the process end at each call, one at a time" );
   app.add_option( "--length", length_,
                   "The events of the longest sequence, in place of the file's" )
      ->excludes( faults )
      ->check( CLI::Range( 1U, static_cast< U32 >( Exploration::kLongest ) ) );
   app.add_option( "--shard", shardText_, "Try the I-th of N shares alone" )
      ->excludes( faults )
      ->type_name( "I/N" );
   app.add_option( "--results", results_,
                   "Keep the results in this file, and go on with those that are there" )
      ->excludes( faults )
      ->type_name( "FILE" )
      ->check( problemOfName );
   app.add_option( "--catalogue", catalogue_,
                   "Fail when other findings are made than those of this file" )
      ->type_name( "FILE" )
      ->check( problemOfName );
   app.add_option( "--known", known_,
                   "Name the scenarios below this folder that end like a finding, and fail when a "
                   "finding has none" )
      ->type_name( "DIR" )
      ->check( problemOfName );
   app.add_option( "--write", folder_,
                   "Write the catalogue, and a scenario for each finding, into this folder" )
      ->excludes( faults )
      ->type_name( "DIR" )
      ->check( problemOfName );
   jobs_.declare( app );
   app.add_flag( "--json", isJson_, "Print one JSON document instead of text" );
   run_.declarePlugin( app );
   run_.declareTurnLimit( app );
}

void Explore::readWords() {
   run_.readWords();
   if ( isMerge() && !areFaults_ && words_.size() < 3 ) {
      throw CLI::ValidationError( "merge", "an exploration and files of results are expected" );
   }
   if ( !areFaults_ && !isMerge() && words_.size() != 1 ) {
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

Host::AgentConfig Explore::config( std::filesystem::path const & file ) const {
   Host::AgentConfig config;
   config.scenario = file.string();
   config.plugin = run_.plugin();
   return config;
}

Findings Explore::explore( Exploration const & exploration, std::size_t length,
                           int & signal ) const {
   Host::AgentConfig config = this->config( exploration.file() );
   config.lastStep = static_cast< U32 >( exploration.firstEvent() );
   Exploring::Share share( exploration, length, shard_, results_ );
   auto const work = [ & ]( std::size_t number ) {
      Exploring::Branch const & branch = share.open()[ number ];
      return Exploring::resultOf( branch, [ & ] {
         return Exploring::explored( exploration, config, branch, { length, run_.turnLimit() } );
      } );
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

// Whether the findings are those of the catalogue, where one is named.
bool Explore::isAsInCatalogue( Findings const & findings ) const {
   if ( !expected_ ) {
      return true;
   }
   auto const found = catalogueOf( findings );
   auto const tell = [ & ]( char const * what, auto const & lines, auto const & others ) {
      for ( std::string const & line : lines ) {
         if ( !others.contains( line ) ) {
            std::cerr << what << ": " << Text::printable( line ) << '\n';
         }
      }
   };
   tell( "new", found, *expected_ );
   tell( "vanished", *expected_, found );
   return found == *expected_;
}

// Whether a scenario shows each finding, where a folder of them is named.
bool Explore::isKnown( Explored const & subject ) const {
   bool isKnown = true;
   for ( auto const & [ key, found ] : subject.findings.all ) {
      bool const isShown = key.kind == Exploring::Kind::transient ||
                           !limits_.showing( key ).empty() ||
                           subject.needsNoLimit( found.shortest );
      if ( limits_.isThere() && !isShown ) {
         std::cerr << "shown by no scenario: " << Text::printable( lineOf( key ) ) << '\n';
         isKnown = false;
      }
   }
   return isKnown;
}

// Before the work: what would come to nothing behind it.
void Explore::prepare() {
   if ( !catalogue_.empty() ) {
      expected_ = Exploring::catalogueIn( catalogue_ );
   }
   if ( !folder_.empty() ) {
      Process::refuseForeign( folder_ );
      std::error_code error;
      std::filesystem::create_directories( folder_, error );
      if ( error || !std::filesystem::is_directory( folder_ ) ) {
         throw Story::InputError( folder_.string() + " is no folder, and none can be made (" +
                                  error.message() + "); name another one" );
      }
   }
   if ( !known_.empty() ) {
      limits_ = { known_, config( words_.back() ), run_.turnLimit() };
   }
}

Explored Explore::explored( int & signal ) const {
   auto const exploration = std::make_shared< Exploration >( words_[ isMerge() ? 1 : 0 ] );
   std::size_t const length = length_.value_or( static_cast< U32 >( exploration->length() ) );
   Findings const findings =
      isMerge() ? merged( *exploration, length ) : explore( *exploration, length, signal );
   if ( signal == 0 && !folder_.empty() ) {
      writeFindings( folder_, *exploration, findings );
   }
   Exploring::Counts const & counts = findings.counts;
   return { exploration->name(),
            { { "exploration", exploration->name() },
              { "file", exploration->file().string() },
              { "sequences", counts.sequences },
              { "standFor", counts.standFor },
              { "withoutEffect", counts.without },
              { "frames", counts.frames } },
            "sequence",
            findings,
            [ exploration ]( Sequence const & sequence ) {
               std::vector< std::string > steps;
               for ( U16 const event : sequence ) {
                  steps.push_back( exploration->text( event ) );
               }
               return steps;
            },
            []( Sequence const & ) { return std::string(); },
            []( Sequence const & ) { return false; } };
}

Explored Explore::exploredFaults( int & signal ) const {
   auto const files = Testing::scenariosAmong( { words_.begin(), words_.end() } );
   if ( files.empty() ) {
      throw Story::InputError( "there are no scenarios; name one, or a folder such as scenarios" );
   }
   std::size_t const shares = std::max< std::size_t >( kPieces / files.size(), 1 );
   auto const work = [ & ]( std::size_t piece ) {
      return Exploring::resultOf( {}, [ & ] {
         return faultsOf( files[ piece / shares ], piece / shares, piece % shares, shares );
      } );
   };
   ProgressLine line( std::cerr );
   Findings all;
   std::size_t done = 0;
   auto const take = [ & ]( std::size_t piece, Process::Worked const & worked ) {
      all.add( Exploring::findingsIn( worked, files[ piece / shares ].string() ).second );
      ++done;
   };
   auto const progress = [ & ] {
      if ( isTerminal( STDERR_FILENO ) ) {
         line.advance( fmt::format( "{} {}", ProgressLine::bar( done, files.size() * shares ),
                                    Story::counted( all.counts.sequences, "fault" ) ) );
      }
   };
   signal = Process::workAll( { files.size() * shares, jobs_.count(), work, take, progress } );
   line.clear();
   // A scenario without a call has one fault, the end behind all of none.
   if ( signal == 0 && all.counts.sequences == files.size() ) {
      throw Story::InputError( "no call of the chip is made in these scenarios; name others" );
   }
   std::vector< std::string > names( files.begin(), files.end() );
   return { files.size() == 1 ? names.front() : Story::counted( files.size(), "scenario" ),
            { { "scenarios", names }, { "faults", all.counts.sequences } },
            "fault",
            all,
            []( Sequence const & fault ) {
               return std::vector{ Exploring::Faults::text( withoutScenario( fault ) ) };
            },
            [ names ]( Sequence const & fault ) { return names.at( scenarioOf( fault ) ); },
            []( Sequence const & fault ) {
               return Exploring::Faults::isFailure( withoutScenario( fault ) );
            } };
}

Findings Explore::faultsOf( std::filesystem::path const & file, std::size_t number,
                            std::size_t first, std::size_t every ) const {
   Exploring::Faults const faults( file, config( file ), run_.turnLimit() );
   Findings findings = faults.tried( first, every );
   for ( auto & [ key, found ] : findings.all ) {
      found.shortest = withScenario( found.shortest, number );
   }
   return findings;
}

Story::ExitCode Explore::perform( std::ostream & out ) {
   prepare();
   int signal = 0;
   Explored const subject = areFaults_ ? exploredFaults( signal ) : explored( signal );
   if ( signal == 0 && limits_.isThere() ) {
      signal = limits_.carryOut( jobs_.count() );
   }
   if ( signal != 0 ) {
      std::cerr << "interrupted"
                << ( results_.empty() ? "" : "; the same command goes on with the rest" ) << '\n';
      return Story::exitCodeOf( signal );
   }
   if ( isJson_ ) {
      out << Story::documentText( jsonOf( subject, limits_ ) );
   } else {
      print( subject, limits_, out );
   }
   bool const isSame = isAsInCatalogue( subject.findings );
   bool const isWhole =
      subject.findings.counts.unnamed == 0 || ( !expected_ && !limits_.isThere() );
   return isKnown( subject ) && isSame && isWhole ? Story::ExitCode::Held
                                                  : Story::ExitCode::ExpectationFailed;
}

}  // namespace CommandLine
