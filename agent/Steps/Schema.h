// The JSON Schema of the language (draft 7), for editors: the words and shapes of the readers'
// tables, and the forms of values.
#pragma once

#include <nlohmann/json.hpp>

namespace Steps {

nlohmann::ordered_json schema();

}  // namespace Steps
