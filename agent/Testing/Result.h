// The result of one scenario in a test run.
#pragma once

#include <string>
#include <vector>

#include <Quelm/Integers.h>

namespace Testing {

// One reason why a scenario failed.
struct Failure {
   std::string place;                 // "FILE:LINE"; empty where no line is to blame
   std::string what;                  // in one line
   std::vector< std::string > lines;  // the details, such as what was found
};

struct Result {
   std::string file;
   std::string title;    // the scenario's name; empty when it could not be read
   bool isOver = false;  // it ran, or could not be run; false when the test run was interrupted
   std::vector< Failure > failures;
   U32 expectations = 0;
   double seconds = 0;

   bool isFailed() const { return !failures.empty(); }
};

// In one line without its line end, and back; throws std::runtime_error for any other text.
std::string encoded( Result const & result );
Result decoded( std::string const & line );

std::size_t failedIn( std::vector< Result > const & results );

}  // namespace Testing
