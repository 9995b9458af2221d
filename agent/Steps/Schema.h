// The JSON Schema of the language (draft 7), for editors: the words and shapes of the readers'
// tables, and the forms of values.
#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace Steps {

// The version of the language (docs/compatibility.md).
inline constexpr std::string_view kLanguageVersion = "1.0";

nlohmann::ordered_json schema();

// The same as text. An object or a list that fits into a line of 100 columns stands in one.
std::string schemaText();

}  // namespace Steps
