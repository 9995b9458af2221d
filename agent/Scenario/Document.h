// Reads a text as a YAML document.
#pragma once

#include <string>

#include <Scenario/Reading.h>

namespace Scenario {

// The one document of `text`. Throws ReadError, which names `file`, when the text is not YAML,
// holds more than one document, or cannot be a scenario (Scenario/Survey.h).
Value documentIn( std::string const & text, std::string const & file );
// The document of a text that documentIn() has read.
YAML::Node parsed( std::string const & text );

}  // namespace Scenario
