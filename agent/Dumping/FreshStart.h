// A scenario whose fresh start leads to a published state.
#pragma once

#include <Dumping/Past.h>
#include <Scenario/Yaml.h>
#include <Story/Table.h>

namespace Dumping {

// The order in which a fresh start comes to its state. The plug-in makes different things of it.
struct Order {
   bool areForeignFirst = false;  // others take their entries before the plug-in is ready
   bool areGrantsByHand = false;  // the class ids are granted as they are, not anew
};

// The orders that can make a difference for that state, the usual one first.
std::vector< Order > ordersFor( Story::Table const & state, Past const & past );

// `scenario` is the one that has led to the state; its switch stays, less the ports and members.
// What the words of a scenario cannot express is left out.
Scenario::Yaml freshStart( Scenario::Yaml const & scenario, Story::Table const & state,
                           Past const & past, Order const & order );

// The scenario without the VLANs of interfaces that are members of a port channel in that state:
// the port channel's hold for them, and a scenario cannot give them others.
Scenario::Yaml withoutVlansOfMembers( Scenario::Yaml scenario, Story::Table const & state );

}  // namespace Dumping
