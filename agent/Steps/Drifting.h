// What the step `drift` does to a chip.
#pragma once

#include <FieldProcessor/Unit.h>
#include <Reporters/ChipReporter.h>
#include <Steps/DriftStep.h>

namespace Steps {

// Quelm::AccessError when there is no such rule, more than one of that name, or the chip refuses
// the change. The reporter tells the rules that have changed.
void drift( DriftStep const & what, Chip::Units & units, Reporters::ChipReporter & reporter );

}  // namespace Steps
