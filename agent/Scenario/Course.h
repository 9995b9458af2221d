// The course of a scenario: what is published and withdrawn, followed from the start through the
// steps.
//
// What only the order of things makes wrong is found here, before anything is loaded: what is
// withdrawn must be there, and no two VTEPs may have one VP index when a step is over. Steps that
// reach published entities through the generic interface can change anything; from there on nothing
// is said of these two. Steps about frames need a switch that is told how to forward.
#pragma once

#include <Scenario/Reading.h>
#include <Scenario/Scenario.h>

namespace Scenario {

void followCourse( Reading & reading, Model const & model );

}  // namespace Scenario
