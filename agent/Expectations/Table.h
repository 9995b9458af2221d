// The table of all expectations.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <Expectations/Expected.h>
#include <Scenario/Words.h>

namespace Expectations {

struct Row {
   std::string_view name;
   std::string shape;  // of the value under it
   // Nothing when it cannot be read; the reading gets the problem.
   std::shared_ptr< Expected const > ( *read )( Reading &, Value const & );
   std::vector< WordList > ( *vocabulary )();
};

// In the order in which messages and help list them.
std::vector< Row > const & table();

// Reads a mapping of expectations, or a list of such mappings, in the order written.
void readExpectations( Reading & reading, Value const & value,
                       std::vector< Expectation > & expectations );

// The words of the mapping of expectations, and of each of them.
std::vector< WordList > vocabulary();

}  // namespace Expectations
