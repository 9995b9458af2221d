// The rules by the state alone, as RFC 8365, section 8.3.1, reads: no history.
//
// It holds on a calm switch: one unit, room for everything, each interface with a port of its own
// and in one place, one tunnel interface and a VNI for each VRF, class ids for all VTEPs from their
// allocator alone, and one change at a time.
#pragma once

#include <vector>

#include <Facts/Facts.h>
#include <Rules/Rule.h>

namespace Reference {

std::vector< Rule > rulesByState( Device const & device, Facts const & facts );

}  // namespace Reference
