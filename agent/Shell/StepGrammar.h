// What may stand at a place of a step, from the same tables as the reader and the JSON Schema.
//
// expectedAt() reads a text that is not complete: it ends where a person types. It knows flow and
// block mappings, flow lists, quotes and comments. A text that is no YAML expects nothing.
#pragma once

#include <cstddef>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Shell {

// The names that exist on a switch, by their form.
enum class Named { ethernet, portChannel, vxlan, vtep, path, attribute, file };

struct Expected {
   std::size_t begin = 0;               // of the word that is not complete
   std::vector< std::string > words{};  // keys ("vteps: "), choices, opening brackets
   std::set< Named > names{};
   std::string entity{};   // whose attribute is expected
   bool isInFlow = false;  // where brackets need quotes
};

Expected expectedAt( std::string_view step );

// The words that name a step, and the purpose of one; nothing for no step.
std::vector< std::string_view > stepNames();
std::optional< std::string > purposeOfStep( std::string_view name );

}  // namespace Shell
