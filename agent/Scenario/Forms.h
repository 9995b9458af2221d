// The forms of values that the JSON Schema of the language describes by a range or a pattern:
// interface names, addresses, trace levels, and the collections of published state.
//
// Shapes refer to them by name (Scenario/Shape.h). The functions that read such values stand in
// Values.h and beside the words that have them; a schema says less than they do, never more.
#pragma once

#include <nlohmann/json.hpp>

namespace Scenario {

// The definitions by name.
nlohmann::ordered_json forms();

}  // namespace Scenario
