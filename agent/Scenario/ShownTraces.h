// The text traces that are on unless the scenario or --trace says otherwise: level 0 of every
// handle, and the start-up functions of the plug-in's mounter, which deserve a line each.
#pragma once

#include <string_view>

namespace Scenario {

inline constexpr std::string_view kMounterTrace = "VornalEvpnMounter";
inline constexpr int kMounterLevel = 8;

constexpr bool isShownFromTheStart( std::string_view handle, int level ) {
   return level == 0 || ( handle == kMounterTrace && level == kMounterLevel );
}

}  // namespace Scenario
