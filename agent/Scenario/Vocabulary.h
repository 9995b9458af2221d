// The words of the language without its steps (Steps/Reader.h has all of them), for the JSON Schema
// and its test, which must agree with the reader.
#pragma once

#include <vector>

#include <Scenario/Words.h>

namespace Scenario {

// The words of every mapping with a fixed set of words ("switch", "publish"), and the texts of
// every choice ("variant"), by place.
std::vector< WordList > vocabulary();

}  // namespace Scenario
