// Readers of interfaces, their chip ports, and the members of port channels.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Scenario/Reading.h>
#include <Scenario/Scenario.h>
#include <Scenario/Words.h>

namespace Scenario {

using Changes = std::vector< Change >;

// An interface of the kind that can stand there; any other is a problem, and nothing.
std::optional< Pelk::IntfId > ethernetIn( Reading & reading, std::string const & text, int line );
std::optional< Pelk::IntfId > portChannelIn( Reading & reading, std::string const & text,
                                             int line );
// An Ethernet interface or a port channel, which has to be defined somewhere.
std::optional< Pelk::IntfId > segmentIntfIn( Reading & reading, std::string const & text,
                                             int line );
std::optional< Pelk::IntfId > tunnelIntfIn( Reading & reading, std::string const & text, int line );
// Each appends to the changes.
void readInterfaces( Reading & reading, Value const & value, Changes & changes );
void readWithdrawnInterfaces( Reading & reading, Value const & value, Changes & changes );
void readPortChannels( Reading & reading, Value const & value, Changes & changes );
void readWithdrawnMembers( Reading & reading, Value const & value, Changes & changes );

std::vector< WordList > interfaceVocabulary();

}  // namespace Scenario
