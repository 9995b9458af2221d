// The table of all steps.
#pragma once

#include <memory>
#include <string_view>
#include <vector>

#include <Scenario/Words.h>
#include <Steps/Step.h>

namespace Steps {

struct Row {
   std::string_view name;
   std::string shape;  // of the value under it
   std::shared_ptr< Scenario::Action const > ( *read )( Reading &, Value const & );
   // Nothing: the step cannot stand in `turn`.
   std::shared_ptr< TurnPart const > ( *readTurnPart )( Reading &, Value const & );
   std::vector< WordList > ( *vocabulary )();
};

// In the order in which messages and help list them.
std::vector< Row > const & table();

}  // namespace Steps
