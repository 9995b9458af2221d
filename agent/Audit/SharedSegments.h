// Which segments this switch shares with a VTEP, and through which ports.
//
// A port channel stands for its members. Invalid ports and ports of other units do not count.
#pragma once

#include <set>
#include <string>

#include <Audit/State.h>
#include <Story/VtepNames.h>

namespace Audit {

// The VTEPs that need rules: they share a segment and have a virtual port.
std::set< Pelk::IpGenAddr > activeVteps( State const & state );

// The valid ports of the segments shared with the VTEP on the unit.
std::set< VornalTypes::VornalPort > sharedPorts( State const & state, U16 unit,
                                                 Pelk::IpGenAddr const & vtep );

// The VP index of the VTEP: the low 16 bits of its virtual port; 0 without one.
U16 vpIndexOf( State const & state, Pelk::IpGenAddr const & vtep );

// The names of the VTEPs that have a virtual port, by source gport.
Story::VtepNames vtepNamesIn( State const & state );

// "VTEP 10.0.0.2 shares segment Port-Channel2 through Ethernet3; virtual port 2", for an active
// VTEP
std::string sharingText( State const & state, U16 unit, Pelk::IpGenAddr const & vtep );

}  // namespace Audit
