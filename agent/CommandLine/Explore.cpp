#include <CommandLine/Explore.h>

#include <iostream>

#include <fmt/format.h>

#include <CommandLine/ExploredFaults.h>
#include <CommandLine/ProgressLine.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Exploring/Catalogue.h>
#include <Process/SharedFolder.h>
#include <Process/Workers.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Text/Numbers.h>
#include <Text/Printable.h>

#include <unistd.h>

namespace CommandLine {

namespace {

using Exploring::Exploration;
using Exploring::Findings;
using Exploring::Sequence;

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
   value( app, "FILE", words_,
          "The exploration's file; or 'merge', that file, and files of results; with "
          "--faults, scenarios, or folders with scenarios" )
      .required()
      .check( problemOfName );
   Word const faults =
      flag( app, "--faults", areFaults_,
            "In the runs of scenarios, let each call of the chip fail, each request for an "
            "entry find no room, and the process end at each call, one at a time" );
   value( app, "--length", length_, "The events of the longest sequence, in place of the file's" )
      .excludes( faults )
      .range( 1, static_cast< U32 >( Exploration::kLongest ) );
   value( app, "--shard", shardText_, "Try the I-th of N shares alone" )
      .excludes( faults )
      .type( "I/N" );
   value( app, "--results", results_,
          "Keep the results in this file, and go on with those that are there" )
      .excludes( faults )
      .type( "FILE" )
      .check( problemOfName );
   value( app, "--catalogue", catalogue_,
          "Fail when other findings are made than those of this file" )
      .type( "FILE" )
      .check( problemOfName );
   value( app, "--known", known_,
          "Name the scenarios below this folder that end like a finding, and fail when a "
          "finding has none" )
      .type( "DIR" )
      .check( problemOfName );
   value( app, "--write", folder_,
          "Write the catalogue, and a scenario for each finding, into this folder" )
      .excludes( faults )
      .type( "DIR" )
      .check( problemOfName );
   jobs_.declare( app );
   flag( app, "--json", isJson_, "Print one JSON document instead of text" );
   run_.declarePlugin( app );
   run_.declareTurnLimit( app );
}

void Explore::readWords() {
   run_.readWords();
   if ( isMerge() && !areFaults_ && words_.size() < 3 ) {
      refuseValue( "merge", "an exploration and files of results are expected" );
   }
   if ( !areFaults_ && !isMerge() && words_.size() != 1 ) {
      refuseValue( "FILE", "one exploration is expected" );
   }
   if ( !shardText_.empty() ) {
      auto const shard = shardIn( shardText_ );
      if ( !shard ) {
         refuseValue( "--shard", "'" + shardText_ + "' is no share; give one such as 1/4" );
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
   return { .name = exploration->name(),
            .what = { { "exploration", exploration->name() },
                      { "file", exploration->file().string() },
                      { "sequences", counts.sequences },
                      { "standFor", counts.standFor },
                      { "withoutEffect", counts.without },
                      { "frames", counts.frames } },
            .thing = "sequence",
            .findings = findings,
            .stepsOf =
               [ exploration ]( Sequence const & sequence ) {
                  std::vector< std::string > steps;
                  for ( U16 const event : sequence ) {
                     steps.push_back( exploration->text( event ) );
                  }
                  return steps;
               },
            .scenarioOf = []( Sequence const & ) { return std::string(); },
            .needsNoLimit = []( Sequence const & ) { return false; } };
}

FaultsAsked Explore::faults() const {
   return { .names = words_,
            .configOf = [ this ]( std::filesystem::path const & file ) { return config( file ); },
            .longestStep = run_.turnLimit(),
            .jobs = jobs_.count() };
}

Story::ExitCode Explore::perform( std::ostream & out ) {
   prepare();
   int signal = 0;
   Explored const subject = areFaults_ ? exploredFaults( faults(), signal ) : explored( signal );
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
