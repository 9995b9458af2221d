// The changes of a scenario's published state, as events.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <History/Event.h>
#include <Scenario/AttributeAt.h>
#include <Scenario/Scenario.h>

namespace Reference {

Interface interfaceOf( Pelk::IntfId const & intf );
Vtep vtepOf( Pelk::IpGenAddr const & vtep );

// One event, or none where the reference does not look.
std::vector< Event > published( Scenario::Published const & what );
std::vector< Event > withdrawn( Scenario::Published const & what );
Event replaced( Scenario::Replaced const & what );

// The virtual port of a VTEP under any key, which is set or deleted by its path. Nothing for
// another attribute.
std::optional< Event > keyIs( Scenario::AttributeAt const & at, std::string const & value );
std::optional< Event > keyGoes( Scenario::AttributeAt const & at );
// The port of an interface, which an operation gives.
std::optional< Event > portIs( std::string const & operation,
                               std::vector< std::string > const & arguments );

}  // namespace Reference
