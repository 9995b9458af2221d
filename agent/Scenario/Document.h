// The YAML document that a text is.
#pragma once

#include <string>

#include <Scenario/Reading.h>

namespace Scenario {

// The one document that `text` is. ReadError, which names `file`, when it is not YAML, more than
// one document, or nothing that a scenario can be (Scenario/Survey.h).
Value documentIn( std::string const & text, std::string const & file );

}  // namespace Scenario
