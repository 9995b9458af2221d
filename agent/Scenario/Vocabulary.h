// The words of the language, less those of its steps (Steps/Reader.h has all of them), for those
// who must agree with the reader: the JSON Schema and its test.
#pragma once

#include <vector>

#include <Scenario/Words.h>

namespace Scenario {

// The words of every mapping with a fixed set of words ("switch", "publish"), and the texts of
// every value that is one of a few ("variant"), by place.
std::vector< WordList > vocabulary();

}  // namespace Scenario
