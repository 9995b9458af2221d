// One frame in the forms in which its copies leave: without VLAN tag, with it, in VXLAN.
//
// Each form is made when it is first asked for, at most once, and a frame that came in that form
// is not copied. Copies into several tunnels share the inner frame: only the headers in front of it
// are written again, so the result of enveloped() is valid until the next call.
#pragma once

#include <Pipeline/Encapsulation.h>
#include <Pipeline/Pipeline.h>

namespace Chip {

class Departure {
 public:
   // Takes the frame as it came, with its header; it is not longer than Pipeline::kLargestFrame.
   // The bytes stay valid as long as it leaves.
   void start( Bytes frame, EthernetHeader const & ethernet );
   // A copy of the frame, to be changed. The frame leaves as the copy is then.
   MutableBytes ownCopy();

   Bytes untagged();
   Bytes tagged( U16 vlan );
   Bytes enveloped( OuterHeaders const & outer, OuterHeaders::PerFrame perFrame );

 private:
   static constexpr std::size_t kLargestFrame = Pipeline::kLargestFrame;

   // The frame without tag, behind room for outer headers.
   MutableBytes untaggedCopy();

   Bytes frame_{};
   EthernetHeader ethernet_{};
   std::size_t untaggedSize_ = 0;  // 0 until the copy is made
   std::size_t taggedSize_ = 0;
   U16 taggedWith_ = 0;
   std::array< U8, kLargestFrame > own_{};
   std::array< U8, kLargestFrame + EthernetHeader::kTag > tagged_{};
   std::array< U8, OuterHeaders::kLargest + kLargestFrame > untagged_{};
};

}  // namespace Chip
