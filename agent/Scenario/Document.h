// The YAML document that a file holds.
#pragma once

#include <filesystem>
#include <string>

#include <Scenario/Reading.h>

namespace Scenario {

// What stands in `file`. ReadError when it cannot be read, or nothing stands there.
std::string textIn( std::filesystem::path const & file );

// The one document that `text` is. ReadError, which names `file`, when it is not YAML or more than
// one document.
Value documentIn( std::string const & text, std::string const & file );

}  // namespace Scenario
