// Compares the chips' rules with the rules that a scenario expects. If they differ, it names the
// nearest rule.
#pragma once

#include <Expectations/Evidence.h>
#include <Expectations/Rules.h>

namespace Expectations {

Finding checkRules( RulesLike const & expected, Evidence const & evidence );

}  // namespace Expectations
