// The files that a scenario names: captures and feature files.
#pragma once

#include <vector>

#include <Scenario/ReadError.h>
#include <Scenario/Scenario.h>

namespace CommandLine {

// What a run would find wrong in them, in the order of the steps; feature files come last. A
// capture that is not there is a mistake of the scenario itself, and not among these.
std::vector< Scenario::Problem > problemsOfNamedFiles( Scenario::Model const & scenario );

}  // namespace CommandLine
