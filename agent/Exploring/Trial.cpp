#include <Exploring/Trial.h>

#include <Exploring/Processes.h>
#include <Story/InputError.h>

namespace Exploring {

namespace {

constexpr U32 kRingLines = 64;  // nobody reads them

}  // namespace

Trial::Trial( Setting const & setting, Story::Observer & observer )
      : longestStep_( setting.longestStep ),
        ring_( Trace::Ring::sizeFor( kRingLines ) ),
        agent_( setting.scenario, setting.config, ring_, observer ) {}

void Trial::comeUp( Host::Agent::Past const & past ) {
   timeIs( longestStep_ );
   agent_.begin( past );
   timeIs( {} );
}

void Trial::carryOut( Scenario::Step const & step ) {
   timeIs( longestStep_ );
   agent_.carryOut( step );
   timeIs( {} );
}

bool Trial::tried( Scenario::Step const & step ) {
   try {
      carryOut( step );
      return true;
   } catch ( Story::InputError const & ) {
      timeIs( {} );
      return false;
   }
}

}  // namespace Exploring
