// The faults of the chip that a scenario has, as events.
#pragma once

#include <optional>
#include <string>

#include <History/Event.h>
#include <Scenario/Scenario.h>

namespace Reference {

// Nothing for a step that is no fault.
std::optional< Event > faultOf( Scenario::Action const & action );

// Why there is no opinion on a fault; empty where there is one.
std::string noOpinionOnFault( Scenario::Action const & action );

}  // namespace Reference
