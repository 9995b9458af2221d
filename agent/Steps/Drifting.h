// The step `drift` at work on a chip.
#pragma once

#include <FieldProcessor/Unit.h>
#include <Reporters/ChipReporter.h>
#include <Steps/DriftStep.h>

namespace Steps {

// Throws Quelm::AccessError when no rule or more than one has that name, or when the chip refuses
// the change. The reporter reports the changed rules.
void drift( DriftStep const & what, Chip::Units & units, Reporters::ChipReporter & reporter );

}  // namespace Steps
