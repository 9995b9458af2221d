// The parts of a scenario. A function of the same shape reads each; one source file per subject.
//
// | source         | reads                                                     |
// |----------------|-----------------------------------------------------------|
// | Reader.cpp     | the scenario itself, and those based on another           |
// | Switch.cpp     | `switch`, less the interfaces                             |
// | Interfaces.cpp | interfaces and port channels                              |
// | Published.cpp  | segments, VTEPs, tunnel interfaces, class ids: before the |
// |                | plug-in is loaded and in steps                            |
// | Forwarding.cpp | `forwarding`                                              |
//
// Steps/ and Expectations/ hold the readers of `steps`, one source for each kind.
#pragma once

#include <optional>
#include <vector>

#include <Scenario/Scenario.h>
#include <Scenario/Values.h>
#include <Scenario/Words.h>

namespace Scenario {

void readSwitch( Reading & reading, Value const & value, Model & model );
Choices< Variant > const & variants();

// Each appends to the changes.
void readEvpn( Reading & reading, Value const & value, std::vector< Change > & changes );
void readPublish( Reading & reading, Value const & value, std::vector< Change > & changes );
void readWithdraw( Reading & reading, Value const & value, std::vector< Change > & changes );
// Segments and tunnel interfaces, each followed by its contents.
void readReplaced( Reading & reading, Value const & value, std::vector< Change > & changes );

// The address of a remote VTEP; a packet can be sent to it.
std::optional< Pelk::IpGenAddr > vtepIn( Reading & reading, std::string const & text, int line );

// An interface or a port channel, which the scenario must define somewhere.
std::optional< Pelk::IntfId > intfIn( Reading & reading, std::string const & text, int line );
std::optional< Pelk::IntfId > intfOf( Reading & reading, Value const & value );

void readForwarding( Reading & reading, Value const & value,
                     std::optional< Forwarding > & forwarding );

// Every list of words of each source, for vocabulary().
std::vector< WordList > switchVocabulary();
std::vector< WordList > publishedVocabulary();
std::vector< WordList > forwardingVocabulary();

}  // namespace Scenario
