// What becomes of the VNIs of tunnel interfaces that go.
//
// Per-VNI rules follow the mappings of every tunnel interface, but only Vxlan1 takes rules with it
// when it is withdrawn, and then it takes all of them. So a rule can be left of an interface that
// has gone, and be missing for one that is still there. No present state says so; this does, by
// watching the interfaces go. One that is replaced in place has not gone.
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

   // VNIs of interfaces other than Vxlan1 when they went, since Vxlan1 went last.
   std::set< U32 > const & leftVnis() const { return left_; }
   // VNIs that other interfaces had when Vxlan1 went.
   std::set< U32 > const & freedVnis() const { return freed_; }

 private:
   void handleGone( Vxlan::VtiStatus const & gone );

   Quelm::Ptr< Vxlan::VtiStatusDir const > dir_;
   std::set< U32 > left_;
   std::set< U32 > freed_;
   Kiv::Watch< Vxlan::VtiStatusDir > watch_;
};

}  // namespace Audit
