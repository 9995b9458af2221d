// The place in a scenario where it expects the process to stop.
#pragma once

#include <cstddef>
#include <optional>

#include <Scenario/Scenario.h>

namespace Steps {

// The first step that is never carried out, because the one before it is expected to stop the
// process: its index in the list of steps. Nothing: every step is carried out.
std::optional< std::size_t > firstNotReached( Scenario::Model const & scenario );

// One step follows the expectation of a stop, and it is the scenario's last own one. Throws
// Scenario::ReadError otherwise.
void checkExpectedStop( Scenario::Model const & scenario );

}  // namespace Steps
