// An audit as text for people. All of it is printable.
//
//    audit: 1 difference, 0 known; 4 expected rules, 3 in the chip; 1 VTEP unprotected: 10.0.0.4
//       wrong-mask: unit 0, ingress group 157, entry 3, "Mark or drop ...", EgressMask
//          is ports 3; should be ports 3, 4
//          VTEP 10.0.0.2 shares segment Port-Channel2 through Ethernet3 and Ethernet4; ...
#pragma once

#include <string>
#include <vector>

#include <Story/Event.h>
#include <Story/Style.h>

namespace Story {

std::vector< std::string > linesOf( Audited const & audited, Style const & style );

// How many of the differences are not known.
std::size_t faultsIn( Audited const & audited );

// "1 VTEP unprotected: 10.0.0.4", the VTEPs that lack a rule; empty when there are none.
std::string unprotectedText( Audited const & audited );

}  // namespace Story
