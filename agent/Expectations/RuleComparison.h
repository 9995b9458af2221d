// Whether the chips have the rules that a scenario expects, and which comes nearest when they have
// not.
#pragma once

#include <Expectations/Evidence.h>
#include <Expectations/Rules.h>

namespace Expectations {

Finding checkRules( RulesLike const & expected, Evidence const & evidence );

}  // namespace Expectations
