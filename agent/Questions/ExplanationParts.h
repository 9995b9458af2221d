// The parts of an explanation, each added below the node of the frame.
#pragma once

#include <Explanation/Explanation.h>
#include <Questions/Grounds.h>
#include <Story/Node.h>

namespace Questions {

// The headers, decoded.
void addHeaders( Chip::DecodedFrame const & headers, Story::Node & frame );
// Tunnel termination and the forwarding decision, with all that they rest on.
void addDecision( Chip::Explanation const & why, Grounds const & grounds, Story::Node & frame );
// The ingress lookup of each unit.
void addIngress( Chip::Explanation const & why, Grounds const & grounds, Story::Node & frame );
// Each copy with its verdict, and the interfaces without a copy.
void addCopies( Chip::Explanation const & why, Grounds const & grounds, Story::Node & frame );

// Whether the VTEP is on the segment of that interface.
bool isSharedWith( Grounds const & grounds, Pelk::IntfId const & intf,
                   Pelk::IpGenAddr const & vtep );
// Whether the copy leaves although the sender of the frame is on the same segment and delivers the
// frame there itself, so that it arrives twice.
bool arrivesTwice( Chip::Explanation const & why, Chip::Copy const & copy,
                   Grounds const & grounds );
// Why local bias lets such a copy pass.
std::string whyItPasses( Grounds const & grounds, Pelk::IpGenAddr const & vtep );

// "unknown-vni: no VLAN of this switch has that VNI".
std::string dropText( Chip::DropReason reason );
// "unit 0 port 3".
std::string portText( VornalTypes::VornalPort const & port );
// "Ethernet1", "VTEP 10.0.0.2".
std::string placeText( Chip::MacPlace const & place );

}  // namespace Questions
