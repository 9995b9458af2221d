// Reads scenarios.
//
// The language is YAML 1.2 with a fixed set of words. docs/scenarios.md describes it, and
// docs/scenario.schema.json is its JSON Schema for editors. Every mapping of the language has one
// table of words (Scenario/Words.h), by which the reader reads it.
//
// Reading is strict. An unknown, repeated or missing word, a value of another type or out of range,
// an undefined interface, a missing file: each is a problem with a line and a remedy. The reader
// does not stop at the first problem. It goes on with the well-formed rest. examine() finds every
// mistake that does not depend on another one. read() follows the course of the steps only when
// nothing else is wrong; it throws ReadError with all problems in file order, and
// never returns a part of a model.
//
// The caller gives the function that reads the steps. A program calls Steps::readScenario()
// (Steps/Reader.h), which gives it.
//
// Cost: linear in the text. Threads: any; a call shares nothing with others.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <Scenario/ReadError.h>
#include <Scenario/Root.h>
#include <Scenario/Scenario.h>

namespace Scenario {

class Reading;
struct Value;

// A step, and its variant unless it is for both.
struct StepForVariant {
   Step step;
   std::optional< Variant > onlyOn;
   // No mistake hides how the step changes the published state.
   bool isEffectKnown = true;
};

using StepsReader = void ( * )( Reading & reading, Value const & value,
                                std::vector< StepForVariant > & steps );

// A step from elsewhere than the scenario's file.
struct AddedStep {
   std::string name;  // that it goes by in problems, in place of a file: "--then"
   std::string text;  // one element of the list of steps
   // The number of the scenario's own steps in front of it; nothing: all of them.
   std::optional< std::size_t > behind{};
   // It is one of several that may happen, in any order: its effect is not followed.
   bool isChoice = false;
};

// The scenario in `file`, with more steps at its end. For "-" it is read from standard input and
// refers to files in the current directory. ReadError when it cannot be read or is not a scenario.
Model read( std::filesystem::path const & file, StepsReader readSteps,
            std::vector< AddedStep > const & added = {} );

// What there is to find in a scenario, whatever is wrong with it.
struct Findings {
   std::vector< Problem > problems;     // in the order of the output
   std::vector< std::string > leftOut;  // the checks that a mistake has prevented, in words
   Model model;                         // as far as it could be read; complete without problems
};
Findings examine( std::filesystem::path const & file, StepsReader readSteps );
Findings examineText( std::string const & text, std::filesystem::path const & file,
                      StepsReader readSteps );

// The scenario in `text`; `file` names it in problems, and the files that it refers to are named
// relative to that file. Of its own steps the model has the first `own`; nothing: all of them.
Model readText( std::string const & text, std::filesystem::path const & file, StepsReader readSteps,
                std::vector< AddedStep > const & added = {}, std::optional< std::size_t > own = {},
                Root const & root = {} );

}  // namespace Scenario
