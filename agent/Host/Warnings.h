// What a user of a scenario would want to know of, though the run goes on with it: names of trace
// handles and of feature toggles that lead nowhere.
#pragma once

#include <string>
#include <vector>

#include <FeatureFiles/Reader.h>
#include <Scenario/Scenario.h>

namespace Host {

// Trace handles that the scenario names, in its levels and in its expectations, and those of
// `asked`, the levels of the command line, which no loaded module has. One text for each, with the
// place in front. A pattern has to match one handle at least.
std::vector< std::string > unknownTraceHandles(
   Scenario::Model const & scenario, std::vector< Scenario::TraceLevels > const & asked );

// Feature toggles that a file names, and nobody has asked for. One text for each, with the file in
// front.
std::vector< std::string > togglesNotAskedFor( FeatureFiles::Reader const & reader );

}  // namespace Host
