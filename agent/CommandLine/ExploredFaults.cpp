#include <CommandLine/ExploredFaults.h>

#include <algorithm>
#include <iostream>

#include <fmt/format.h>

#include <CommandLine/ProgressLine.h>
#include <CommandLine/Terminal.h>
#include <Exploring/Branches.h>
#include <Exploring/Faults.h>
#include <Process/Workers.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Story/Wording.h>
#include <Testing/Collection.h>

#include <unistd.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;
using Exploring::Findings;
using Exploring::Sequence;

constexpr std::size_t kPieces = 16;  // of all faults, at least; a worker has several

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

// Tries the faults of the files, each file's in as many pieces.
class Work {
 public:
   Work( FaultsAsked const & asked, std::vector< fs::path > const & files )
         : asked_( asked ),
           files_( files ),
           pieces_( std::max< std::size_t >( kPieces / files.size(), 1 ) ) {}

   // The signal that has ended it; 0 for none.
   int carryOut() {
      ProgressLine line( std::cerr );
      auto const work = [ this ]( std::size_t piece ) {
         return Exploring::resultOf( {}, [ & ] { return findingsOf( piece ); } );
      };
      auto const take = [ this ]( std::size_t piece, Process::Worked const & worked ) {
         findings.add( Exploring::findingsIn( worked, fileOf( piece ).string() ).second );
         ++done_;
      };
      auto const progress = [ & ] {
         if ( isTerminal( STDERR_FILENO ) ) {
            line.advance( fmt::format( "{} {}", ProgressLine::bar( done_, count() ),
                                       Story::counted( findings.counts.sequences, "fault" ) ) );
         }
      };
      int const signal = Process::workAll( { count(), asked_.jobs, work, take, progress } );
      line.clear();
      return signal;
   }

   Findings findings;

 private:
   std::size_t count() const { return files_.size() * pieces_; }
   fs::path const & fileOf( std::size_t piece ) const { return files_[ piece / pieces_ ]; }

   Findings findingsOf( std::size_t piece ) const {
      fs::path const & file = fileOf( piece );
      Exploring::Faults const faults( file, asked_.configOf( file ), asked_.longestStep );
      Findings found = faults.tried( piece % pieces_, pieces_ );
      for ( auto & [ key, one ] : found.all ) {
         one.shortest = withScenario( one.shortest, piece / pieces_ );
      }
      return found;
   }

   FaultsAsked const & asked_;
   std::vector< fs::path > const & files_;
   std::size_t pieces_;  // of a file
   std::size_t done_ = 0;
};

Explored told( Findings const & findings, std::vector< std::string > const & names ) {
   return { .name = names.size() == 1 ? names.front() : Story::counted( names.size(), "scenario" ),
            .what = { { "scenarios", names }, { "faults", findings.counts.sequences } },
            .thing = "fault",
            .findings = findings,
            .stepsOf =
               []( Sequence const & fault ) {
                  return std::vector{ Exploring::Faults::text( withoutScenario( fault ) ) };
               },
            .scenarioOf =
               [ names ]( Sequence const & fault ) { return names.at( scenarioOf( fault ) ); },
            .needsNoLimit =
               []( Sequence const & fault ) {
                  return Exploring::Faults::isFailure( withoutScenario( fault ) );
               } };
}

}  // namespace

Explored exploredFaults( FaultsAsked const & asked, int & signal ) {
   auto const files = Testing::scenariosAmong( { asked.names.begin(), asked.names.end() } );
   if ( files.empty() ) {
      throw Story::InputError( "there are no scenarios; name one, or a folder such as scenarios" );
   }
   Work work( asked, files );
   signal = work.carryOut();
   // A scenario without a call has one fault, the end behind all of none.
   if ( signal == 0 && work.findings.counts.sequences == files.size() ) {
      throw Story::InputError( "no call of the chip is made in these scenarios; name others" );
   }
   return told( work.findings, { files.begin(), files.end() } );
}

}  // namespace CommandLine
