// Whether the chips have the rules that a scenario expects, and which comes nearest when they have
// not.
#pragma once

#include <Host/Expectations.h>

namespace Host {

Finding checkRules( Scenario::RulesLike const & expected, Evidence const & evidence );

}  // namespace Host
