// The results of a test run as a file in the form of JUnit, which build servers read.
#pragma once

#include <ostream>
#include <vector>

#include <Testing/Result.h>

namespace Testing {

// One test case for each scenario, its class name the folder. A scenario without a result counts as
// skipped. The text is XML 1.0 in UTF-8, whatever the results contain.
void writeJUnit( std::vector< Result > const & results, double seconds, std::ostream & out );

}  // namespace Testing
