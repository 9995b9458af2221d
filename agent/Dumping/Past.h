// What no entity of a switch shows, but the steps that led to it do.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <Scenario/Yaml.h>

namespace Dumping {

struct Past {
   std::vector< Scenario::Yaml > foreignEntries;  // the steps that count at the end
   bool isAllocatorPaused = false;
   std::map< std::string, bool > designated;  // by interface
   bool hasFrames = false;                    // the chip has learned addresses
   bool hasFaults = false;                    // calls of the chip may still have to fail
};

Past pastOf( std::vector< Scenario::Yaml > const & steps );

// Whether the step can change the state of the switch, less what the chip has learned.
bool changesState( Scenario::Yaml const & step );

}  // namespace Dumping
