// Follows the VNIs of withdrawn tunnel interfaces.
//
// The plug-in adds per-VNI rules for the mappings of every tunnel interface, but removes them only
// when Vxlan1 is withdrawn, and then it removes all of them. So a rule can outlive its interface,
// or be missing for an interface that still exists. The present state does not show this, so this
// class watches interfaces go. Replacing an interface in place does not withdraw it.
//
// Threads: the activity's.
#pragma once

#include <set>

#include <Kiv/Reactor.h>
#include <Vxlan/VtiStatusDir.h>

namespace Audit {

class TunnelHistory {
 public:
   explicit TunnelHistory( Quelm::Ptr< Vxlan::VtiStatusDir const > dir );

   // VNIs of other interfaces that were withdrawn since Vxlan1 was last withdrawn.
   std::set< U32 > const & leftVnis() const { return left_; }
   // VNIs that other interfaces had when Vxlan1 was withdrawn.
   std::set< U32 > const & freedVnis() const { return freed_; }

 private:
   void handleGone( Vxlan::VtiStatus const & gone );

   Quelm::Ptr< Vxlan::VtiStatusDir const > dir_;
   std::set< U32 > left_;
   std::set< U32 > freed_;
   Kiv::Watch< Vxlan::VtiStatusDir > watch_;
};

}  // namespace Audit
