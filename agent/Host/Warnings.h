// Warnings about a scenario, while the run goes on: names of trace handles and of feature toggles
// that lead nowhere.
#pragma once

#include <string>
#include <vector>

#include <FeatureFiles/Reader.h>
#include <Scenario/Scenario.h>

namespace Host {

// Trace handles that no loaded module has. The names come from the scenario's levels and
// expectations, and from `asked`, the levels of the command line. A pattern must match one handle
// at least. One text for each, beginning with its place.
std::vector< std::string > unknownTraceHandles(
   Scenario::Model const & scenario, std::vector< Scenario::TraceLevels > const & asked );

// Feature toggles that a file names and nobody has asked for. One text for each, beginning with the
// file.
std::vector< std::string > togglesNotAskedFor( FeatureFiles::Reader const & reader );

}  // namespace Host
