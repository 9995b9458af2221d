#include <Scenario/Description.h>

#include <fmt/format.h>

#include <Scenario/Parts.h>

namespace Scenario {

namespace {

using Quelm::textOf;

std::string describe( InterfacePort const & what, bool isWithdrawn ) {
   return what.intf.stringValue() + ( isWithdrawn ? "" : " on " + textOf( what.port ) );
}

std::string describe( PortChannelMember const & what, bool isWithdrawn ) {
   return fmt::format( "{} {} {}", textOf( what.member ), isWithdrawn ? "from" : "in",
                       textOf( what.portChannel ) );
}

std::string describe( Segment const & what, bool ) {
   return "segment " + what.intf.stringValue();
}

std::string describe( SegmentVtep const & what, bool isWithdrawn ) {
   return fmt::format( "VTEP {} {} segment {}", textOf( what.vtep ), isWithdrawn ? "from" : "on",
                       textOf( what.intf ) );
}

std::string describe( VtepVirtualPort const & what, bool isWithdrawn ) {
   return isWithdrawn
             ? "virtual port of VTEP " + what.vtep.stringValue()
             : fmt::format( "virtual port {} of VTEP {}", what.virtualPort, textOf( what.vtep ) );
}

std::string describe( TunnelInterface const & what, bool ) {
   return "tunnel interface " + what.intf.stringValue();
}

std::string describe( VrfVni const & what, bool isWithdrawn ) {
   std::string const place = what.vrf.stringValue() + " on " + what.intf.stringValue();
   return isWithdrawn ? "VNI of VRF " + place : "VNI " + textOf( what.vni ) + " of VRF " + place;
}

std::string describe( ClassIdRequest const & what, bool ) {
   return "request of a class id for VTEP " + what.vtep.stringValue();
}

std::string describe( ClassIdGrant const & what, bool isWithdrawn ) {
   return isWithdrawn
             ? "class id of VTEP " + what.vtep.stringValue()
             : fmt::format( "class id {} for VTEP {}", what.id.value(), textOf( what.vtep ) );
}

}  // namespace

std::string_view nameOf( Variant variant ) {
   return variants().nameOf( variant );
}

std::string description( Published const & published, bool isWithdrawn ) {
   return std::visit( [ = ]( auto const & what ) { return describe( what, isWithdrawn ); },
                      published );
}

std::string description( std::vector< Change > const & changes, bool isWithdrawn ) {
   std::string text;
   for ( Change const & change : changes ) {
      text += ( text.empty() ? " " : ", " ) + description( change.what, isWithdrawn );
   }
   return text;
}

}  // namespace Scenario
