// The published state of a switch as the answer to the question "state" lists it: items with their
// values (Questions/State.cpp).
//
//    /evpn/status/segmentStatus[Port-Channel2]/remoteTep[10.0.0.2]   there
//    \___________________ entity ____________/ \attribute/ \ key /   value
#pragma once

#include <map>
#include <optional>
#include <string>
#include <vector>

#include <Scenario/Yaml.h>
#include <Story/Table.h>

namespace Dumping {

struct Item {
   std::string shape;                // the path without its keys: "/evpn/status/segmentStatus[]"
   std::vector< std::string > keys;  // in the order of the path
   std::string value;                // "there" for a member of a set
};

// The published items, in the order of the table.
std::vector< Item > publishedItems( Story::Table const & state );

// The interface's port of the text "unit0/port3/mod1" in the form of a scenario, or nothing.
std::optional< Scenario::Yaml > portOf( std::string const & text );

// The steps that give a switch with the state `is` the published state of `wanted`: `delete` and
// `set`, and `publish` for ports. What the plug-in, the allocator of class ids and the agent make
// of the state is left out.
std::vector< Scenario::Yaml > repairs( Story::Table const & wanted, Story::Table const & is );

// The published state of `after`, less what the steps touch: that is as it was `before`. A step
// touches an item when it names all of its keys.
Story::Table mixed( Story::Table const & before, Story::Table const & after,
                    std::vector< Scenario::Yaml > const & steps );

}  // namespace Dumping
