// The parts of an explanation, each added below the node of the frame.
#pragma once

#include <Explanation/Explanation.h>
#include <Questions/Grounds.h>
#include <Story/Node.h>

namespace Questions {

// The headers, decoded.
void addHeaders( Chip::DecodedFrame const & headers, Story::Node & frame );
// Tunnel termination and the forwarding decision, with all that they rest on.
void addDecision( Chip::Explanation const & why, Story::Node & frame );
// The ingress lookup of each unit.
void addIngress( Chip::Explanation const & why, Grounds const & grounds, Story::Node & frame );
// Each copy with its verdict, and the interfaces without a copy.
void addCopies( Chip::Explanation const & why, Grounds const & grounds, Story::Node & frame );

// "unit 0 port 3".
std::string portText( VornalTypes::VornalPort const & port );
// "Ethernet1", "VTEP 10.0.0.2".
std::string placeText( Chip::MacPlace const & place );

}  // namespace Questions
