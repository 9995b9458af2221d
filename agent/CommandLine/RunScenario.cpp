#include <CommandLine/RunScenario.h>

#include <iostream>

#include <Process/Child.h>
#include <Process/RingMemory.h>
#include <Story/Wording.h>
#include <Text/Printable.h>

namespace CommandLine {

void runScenario( ScenarioRun const & what, std::vector< Story::Observer * > observers,
                  Story::Outcome & outcome ) {
   Process::RingMemory const ring( what.ring );
   observers.push_back( &outcome );
   Story::Observers all( std::move( observers ) );
   Process::runInChild(
      [ & ]( Story::Observer & observer ) {
         Host::Agent( what.scenario, what.config, ring.bytes(), observer ).run();
      },
      ring.bytes(), all, what.turnLimit );
   if ( !outcome.badInput().empty() ) {
      std::cerr << Text::printableLines( outcome.badInput() ) << '\n';
   }
}

void tellInterruption( Story::Outcome const & outcome ) {
   if ( outcome.interrupted() ) {
      std::cerr << "interrupted in " << nameOf( outcome.step() ) << ' '
                << outcome.interrupted()->words() << '\n';
   }
}

}  // namespace CommandLine
