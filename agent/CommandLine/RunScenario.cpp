#include <CommandLine/RunScenario.h>

#include <iostream>

#include <Process/Child.h>
#include <Process/RingMemory.h>
#include <Story/Printable.h>

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
      ring.bytes(), all );
   if ( !outcome.badInput().empty() ) {
      std::cerr << Story::printableLines( outcome.badInput() ) << '\n';
   }
}

}  // namespace CommandLine
