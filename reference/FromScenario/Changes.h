// The changes of a scenario's published state, as events.
#pragma once

#include <vector>

#include <History/Event.h>
#include <Scenario/Scenario.h>

namespace Reference {

Interface interfaceOf( Pelk::IntfId const & intf );
Vtep vtepOf( Pelk::IpGenAddr const & vtep );

// One event, or none where the reference does not look.
std::vector< Event > published( Scenario::Published const & what );
std::vector< Event > withdrawn( Scenario::Published const & what );
Event replaced( Scenario::Replaced const & what );

}  // namespace Reference
