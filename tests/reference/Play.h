// Plays a step of a scenario on the reference.
#pragma once

#include <vector>

#include <FromScenario/FromScenario.h>

// The changes of the step, then the grants, and ends of grants, that the run had during it.
void play( Reference::StepTold const & told, std::vector< Reference::Event > grants,
           Reference::Switch & device, Reference::Forwarding & forwarding );
