#include <Pipeline/Reasons.h>

namespace Chip {

std::string_view nameOf( DropReason reason ) {
   constexpr std::array< std::string_view, kDropReasons > names{
      "unknown-port",       "frame-too-short",    "underlay-not-ip",   "outer-truncated",
      "outer-bad-header",   "outer-bad-checksum", "not-for-this-vtep", "outer-fragment",
      "not-vxlan",          "bad-udp-length",     "bad-vxlan-flags",   "unknown-vtep",
      "unknown-vni",        "inner-too-short",    "inner-vlan-tag",    "unknown-vlan",
      "frame-too-long",     "reserved-address",   "same-interface",    "tunnel-to-tunnel",
      "for-router",         "bad-ip-header",      "bad-ip-checksum",   "not-routable",
      "time-to-live-ended", "no-route",           "unknown-host"
   };
   static_assert( !names.back().empty(), "every reason has a name" );
   return names.at( static_cast< std::size_t >( reason ) );
}

std::string_view nameOf( Verdict verdict ) {
   constexpr std::array< std::string_view, kVerdicts > names{ "sent",          "arrival", "no-port",
                                                              "no-vtep",       "masked",  "dropped",
                                                              "not-designated" };
   static_assert( !names.back().empty(), "every verdict has a name" );
   return names.at( static_cast< std::size_t >( verdict ) );
}

}  // namespace Chip
