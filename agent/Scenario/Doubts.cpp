#include <Scenario/Doubts.h>

#include <algorithm>

namespace Scenario {

namespace {

using Parts = std::vector< std::string >;

struct GroundRow {
   Ground ground;
   std::string leftOut;  // the check in words
   Parts whole;          // parts that must not be lost
   Parts faultless;      // parts that must not hold a mistake either
};

// Steps can define interfaces as well.
Parts definitions( std::string const & word, std::string const & names ) {
   return { "scenario", "scenario/switch", "switch", "switch/" + word,
            names,      "scenario/steps",  "step",   "turn",
            "publish",  "publish/" + word };
}

GroundRow publishedRow() {
   return { Ground::published,
            "the order in which state is published and withdrawn",
            { "scenario", "scenario/switch", "switch", "scenario/evpn", "evpn", "scenario/steps" },
            { "switch/variant", "switch/interfaces", "switch/port-channels", "evpn/segments",
              "evpn/vteps", "evpn/tunnel-interfaces", "evpn/class-id-requests",
              "evpn/class-id-grants" } };
}

std::vector< GroundRow > const & rows() {
   static std::vector< GroundRow > const all{
      { Ground::interfaces,
        "whether each interface is defined",
        definitions( "interfaces", kNamesOfInterfaces ),
        {} },
      { Ground::portChannels,
        "whether each port channel is defined",
        definitions( "port-channels", kNamesOfPortChannels ),
        {} },
      { Ground::units,
        "whether each unit is one of the switch's",
        { "scenario", "scenario/switch", "switch", "switch/units", kNumbersOfUnits },
        {} },
      { Ground::vlans,
        "whether each VLAN has a VNI",
        { "forwarding", "forwarding/vlans", kNumbersOfVlans },
        {} },
      { Ground::accessVlans,
        "whether each designated forwarder carries VLANs",
        { "scenario", "forwarding" },
        { "forwarding/access", "forwarding/trunk" } },
      { Ground::vtepAddresses,
        "whether each VTEP can be reached",
        { "scenario", "forwarding" },
        { "forwarding/vtep-addresses" } },
      { Ground::leavingMembers,
        "whether members of port channels have settings of their own",
        { "scenario", "scenario/steps", "step", "turn", "withdraw" },
        { "withdraw/port-channels" } },
      { Ground::traceLevels,
        "whether each expected trace is switched on",
        { "scenario" },
        { "scenario/trace" } },
      { Ground::forwarding,
        "whether steps about frames have a forwarding configuration",
        { "scenario", "scenario/forwarding" },
        {} },
      publishedRow()
   };
   return all;
}

GroundRow const & rowOf( Ground ground ) {
   return *std::find_if( rows().begin(), rows().end(),
                         [ ground ]( GroundRow const & row ) { return row.ground == ground; } );
}

bool hasAny( std::set< std::string > const & marked, Parts const & parts ) {
   return std::any_of( parts.begin(), parts.end(),
                       [ & ]( std::string const & part ) { return marked.contains( part ); } );
}

}  // namespace

bool Doubts::judges( Ground ground ) {
   GroundRow const & row = rowOf( ground );
   bool const isHidden = hasAny( lost_, row.whole ) || hasAny( lost_, row.faultless ) ||
                         hasAny( flawed_, row.faultless );
   if ( isHidden ) {
      leftOut_.insert( ground );
   }
   return !isHidden;
}

std::vector< std::string > Doubts::leftOut() const {
   std::vector< std::string > texts;
   for ( Ground const ground : leftOut_ ) {
      texts.push_back( rowOf( ground ).leftOut );
   }
   return texts;
}

}  // namespace Scenario
