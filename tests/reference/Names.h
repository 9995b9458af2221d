// The names and numbers that random moves are made of.
#pragma once

#include <array>
#include <string>

namespace Moves {

inline std::array< std::string, 4 > const kVteps{ "10.0.0.2", "10.0.0.10", "2001:db8::2",
                                                  "10.0.0.3" };
inline std::array< std::string, 4 > const kSegments{ "Port-Channel1", "Ethernet1", "Port-Channel2",
                                                     "Ethernet2" };
// On a switch that is not calm, members can be on a segment of their own, too.
inline std::array< std::string, 6 > const kAllSegments{ "Port-Channel1", "Ethernet1",
                                                        "Port-Channel2", "Ethernet2",
                                                        "Ethernet3",     "Ethernet6" };
inline std::array< std::string, 6 > const kInterfaces{ "Ethernet1", "Ethernet3", "Ethernet4",
                                                       "Ethernet2", "Ethernet5", "Ethernet6" };
inline std::array< std::string, 4 > const kMembers{ "Ethernet5", "Ethernet3", "Ethernet4",
                                                    "Ethernet6" };
inline std::array< std::string, 2 > const kPortChannels{ "Port-Channel1", "Port-Channel2" };
inline std::array< std::string, 2 > const kTunnels{ "Vxlan1", "Vxlan2" };
inline std::array< std::string, 3 > const kVrfs{ "red", "blue", "green" };
inline std::array< std::string, 5 > const kVnis{ "50001", "50002", "50003", "none", "0" };
inline std::array< unsigned, 7 > const kPorts{ 6, 1, 3, 4, 5, 2, 1023 };
inline std::array< unsigned, 7 > const kVirtualPorts{ 2, 3, 4, 5, 6, 0, 0x10002 };
inline std::array< std::string, 10 > const kOperations{
   "releaseEntry",         "setPriorityForEntry",
   "addEgressMaskAction",  "updateEgressMaskAction",
   "reinstallEntry",       "installEntry",
   "bcm_field_action_add", "bcm_field_qualify_VxlanNetworkId",
   "bcm_field_action_get", ""
};
inline std::array< std::string, 2 > const kOtherKeys{ "#west", "@2" };
inline std::array< unsigned, 4 > const kClassIds{ 7, 1, 2, 0xffff };

// The one with that number, counted round.
template< typename All > auto const & pick( All const & all, unsigned which ) {
   return all[ which % all.size() ];
}

}  // namespace Moves
