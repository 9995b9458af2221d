// Compares the states of two switches: published state, rules, records.
//
// Each state is the answer to the question "state" (Questions/Table.h), in which every row has a
// name of its own. So a comparison is one of names and values.
#pragma once

#include <CommandLine/RunScenario.h>
#include <Story/Node.h>

namespace CommandLine {

// Runs the scenario and puts its state at the end into `state`; see runForAnswer().
Story::ExitCode stateAfter( ScenarioRun what, Story::Table & state );

// The differences, by kind; a node without children when there are none.
Story::Node differencesBetween( Story::Table const & before, Story::Table const & after );

// Prints the differences. ExpectationFailed when there are any.
Story::ExitCode print( Story::Node const & differences, bool asJson, std::ostream & out );

}  // namespace CommandLine
