// Reads scenarios.
//
// The language is YAML 1.2 with a fixed set of words; docs/scenarios.md describes it and
// docs/scenario.schema.json is its JSON Schema for editors. Every mapping of the language has one
// table of words (Scenario/Words.h), which is what the reader reads by.
//
// Reading is strict. An unknown, repeated or missing word, a value of another type or out of range,
// an interface that nothing defines, a file that is not there: each is a problem with a line, and
// says what would be right. The reader does not stop at the first one; it goes on with what is well
// formed, and throws ReadError with all of them, in file order. A model is handed out whole or not
// at all.
//
// What there is in steps is not known here: the caller gives the function that reads them.
// Steps/Reader.h has it.
//
// Cost: linear in the text. Threads: any; a call shares nothing with others.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include <Scenario/ReadError.h>
#include <Scenario/Scenario.h>

namespace Scenario {

class Reading;
struct Value;

// A step, and the variant that it is for unless it is for both.
struct StepOf {
   Step step;
   std::optional< Variant > onlyOn;
};

using StepsReader = void ( * )( Reading & reading, Value const & value,
                                std::vector< StepOf > & steps );

// The scenario in `file`; for "-" that on standard input, which refers to files beside the current
// directory. ReadError when it cannot be read or is not a scenario.
Model read( std::filesystem::path const & file, StepsReader readSteps );

// The scenario that `text` is; `file` names it in problems, and what it refers to is looked for
// beside that file.
Model readText( std::string const & text, std::filesystem::path const & file,
                StepsReader readSteps );

}  // namespace Scenario
