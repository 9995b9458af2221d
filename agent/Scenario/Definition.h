// The definitions of the JSON Schema, made of the tables that the reader reads by.
#pragma once

#include <nlohmann/json.hpp>

#include <Scenario/Words.h>

namespace Scenario {

// A mapping with these words, or a choice of these texts; it stands in the schema under
// `definitions`, by its place.
nlohmann::ordered_json definitionOf( WordList const & list );

}  // namespace Scenario
