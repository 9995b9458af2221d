// Compares the states of two switches: published state, rules, records.
//
// Each state is the answer to the question "state" (Questions/Table.h), in which every row has a
// name of its own. So a comparison is one of names and values.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CommandLine/RunScenario.h>
#include <CommandLine/Words.h>
#include <Story/Node.h>

namespace CLI {
class App;
}

namespace CommandLine {

// Runs the scenario and puts its state at the end into `state`; see runForAnswer().
Story::ExitCode stateAfter( ScenarioRun what, Story::Table & state );

// The same without a word: nothing when the run does not get to its end, with the signal that has
// ended it, or 0.
std::optional< Story::Table > stateIfAny( ScenarioRun what, int & signal );

// The parts of a state that a comparison can be limited to: "published", "rules", "records".
using Parts = std::vector< std::string >;
// The option --only, which names such parts.
Word declareOnly( CLI::App & app, Parts & only );

// The differences in those parts, or in all where none is named, by kind; a node without children
// when there are none.
Story::Node differencesBetween( Story::Table const & before, Story::Table const & after,
                                Parts const & only );

// Prints the differences. ExpectationFailed when there are any.
Story::ExitCode print( Story::Node const & differences, bool asJson, std::ostream & out );

// How differences are printed.
struct DifferencesShown {
   Parts only;  // empty: all
   bool asJson = false;
};

// Runs both, and prints what differs from the first to the second. Held, unless a run did not get
// to its end.
Story::ExitCode printChange( ScenarioRun const & before, ScenarioRun const & after,
                             DifferencesShown const & how, std::ostream & out );

}  // namespace CommandLine
