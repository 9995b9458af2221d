// Which interfaces a frame must reach.
//
// RFC 8365, section 8.3.1: a frame for several receivers that a VTEP has sent does not leave by the
// segments that this VTEP shares, since the VTEP has delivered it there. mayReach() says that by
// the state alone. isKeptBack() says it by the rules that stand, whatever the way they came.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>

#include <History/Switch.h>

namespace Reference {

using Vlan = unsigned;

struct Forwarding {
   std::map< Interface, std::set< Vlan > > vlans;  // that the interface carries
   std::map< Vlan, Vni > vnis;
   std::set< Interface > notDesignated;
   bool hasIpv4 = false;  // an own VTEP address of that family
   bool hasIpv6 = false;
};

struct Frame {
   std::optional< Vtep > sender;  // nothing: it comes from a host
   Interface arrival;
   Vlan vlan = 0;
   Vni vni = 0;
   std::string kind;  // "broadcast", "known-unicast", ...

   bool hasSeveralReceivers() const {
      return kind == "broadcast" || kind == "unknown-unicast" || kind == "l2-multicast";
   }
};

// By the state alone: the interfaces that a frame for several receivers reaches on a switch whose
// rules are in sync.
std::set< Interface > mayReach( Facts const & facts, Forwarding const & forwarding,
                                Frame const & frame );

// The same without rules: as if no segment were shared.
std::set< Interface > floodedTo( Facts const & facts, Forwarding const & forwarding,
                                 Frame const & frame );

// The VTEPs to which a frame of a host for several receivers is sent, once for each of their keys.
// A frame from a VTEP is sent to no other.
std::multiset< Vtep > floodedThrough( Facts const & facts, Forwarding const & forwarding,
                                      Frame const & frame );

// Whether some port is there by which a frame can leave.
bool canLeaveBy( Facts const & facts, Interface const & intf );

// What the rules keep back of one frame. It looks for the rule of each unit once.
class KeptBack {
 public:
   // The switch outlives it, and does not change meanwhile.
   KeptBack( Switch const & device, Frame const & frame );

   bool at( unsigned unit, unsigned port );

 private:
   Switch const & device_;
   std::map< std::string, unsigned > fields_;  // of the frame, that rules look at
   std::map< unsigned, Content const * > rule_;
};

// Whether a rule keeps the frame back at that port.
bool isKeptBack( Switch const & device, Frame const & frame, unsigned unit, unsigned port );

}  // namespace Reference
