// Lets the hardware drift as a step of a scenario says.
#pragma once

#include <FieldProcessor/Unit.h>
#include <Reporters/ChipReporter.h>
#include <Scenario/Scenario.h>

namespace Host {

// Quelm::AccessError when there is no such rule, more than one of that name, or the chip refuses
// the change. The reporter tells the rules that have changed.
void drift( Scenario::Drift const & what, Chip::Units & units, Reporters::ChipReporter & reporter );

}  // namespace Host
