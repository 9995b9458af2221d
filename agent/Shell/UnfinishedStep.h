// Follows the text of a step that is not complete, down to the place where it ends.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace Shell {

// A mapping or a list that is open at the end of the text.
struct OpenValue {
   bool isMapping = true;
   bool isFlow = false;
   std::size_t column = 0;                          // of the keys of a block mapping
   std::string key{};                               // of the last member
   bool isAtValue = false;                          // the value of that member comes next
   std::map< std::string, std::string > members{};  // texts by key; of other values empty
};

struct UnfinishedStep {
   std::vector< OpenValue > open;  // the outermost first; empty for a text that is no YAML
   std::size_t begin = 0;          // of the word at the end, behind its quote
   bool isQuoted = false;          // that word
};

UnfinishedStep unfinishedStepIn( std::string_view text );

}  // namespace Shell
