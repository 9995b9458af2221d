// The packet pipeline: a frame comes in at a port and leaves by some, by none, or by one, as the
// switch's forwarding state and the field processors' rules have it.
//
// One frame, in this order:
//
//    arrival         the port's interface; a port channel for its members
//    tunnel          on underlay interfaces: the outer headers end here and say source VTEP,
//                    source gport and bridge domain (RFC 7348); on access interfaces the VLAN does
//    learning        the source address is where the frame came from, unless it is known on a
//                    segment that the source VTEP shares; group addresses are not learned
//    decision        FrameKind, and with it the packet resolution; routed frames get their new
//                    addresses; unicast from a tunnel to a host behind a tunnel is dropped
//    ingress rules   of the arrival's unit
//    replication     to the bridge domain's interfaces but the arrival's, one member for each port
//                    channel, and for frames from access interfaces to the VNI's flood list; known
//                    unicast goes to one place. What is flooded from a tunnel enters no other
//    egress mask     of the winning ingress rule, by logical port
//    egress rules    of the port's unit: module id and logical port, IP type of the frame itself,
//                    class id that the ingress rule has set
//    designation     of the interface, for frames from a tunnel that may go to several
//    out             with or without VLAN tag, or in VXLAN
//
// A frame for a port of another unit crosses the fabric together with the fields that its tunnel
// has set, and meets that unit's own ingress rules there. Mask and class id hold for the ports of
// the unit whose rule has set them, and for no other.
//
// Simplifications. Known L3 multicast is delivered to its bridge domain as multicast is, unchanged:
// only its packet resolution is its own. Addresses do not age. A routed frame goes to
// hosts whose MAC address has been learned, and is never flooded. Outer UDP checksums are neither
// made nor verified (RFC 7348, section 5: zero is sent; RFC 6935 for IPv6).
//
// Nothing in a frame can make this fail: a malformed frame is dropped and counted by its reason,
// and no byte past a frame's end is read. The one failure is forwardingIs() with a value that
// contradicts itself.
//
// Cost: no allocation once tables and stories have reached their size. About a hash lookup for each
// of VTEP, VNI, the two MAC addresses, and the field processors' own for each unit and copy
// (FieldProcessor/TupleSpaceLookup.h); bench/pipeline.cpp has the figures.
//
// Threads: one at a time, a holder of the activity lock, as rules are looked up.
//
// Neighbours: the units and their rules are a Board's; frames come from Frames/ and Capture/ or the
// wire.
//
//    Chip::Pipeline pipeline( board.units() );
//    pipeline.forwardingIs( config );
//    Chip::FrameStory const & story = pipeline.forward( { 0, 49 }, frame, transmitter );
#pragma once

#include <memory>
#include <span>

#include <FieldProcessor/Unit.h>
#include <Pipeline/Forwarding.h>
#include <Pipeline/LearnedMac.h>
#include <Pipeline/Story.h>

namespace Chip {

struct Rehearsal;

// Takes the frames that leave the switch. The bytes are valid during the call. The call gives no
// frame to the same pipeline and changes no rules; a frame that comes back is kept until this one
// is through.
class Transmitter {
 public:
   virtual void transmit( VornalTypes::VornalPort port, std::span< U8 const > frame ) = 0;

 protected:
   ~Transmitter() = default;
};

struct PipelineCounters {
   U64 frames = 0;
   // Each frame is in one of these two
   std::array< U64, kFrameKinds.size() > forwarded{};  // by FrameKind
   std::array< U64, kDropReasons > dropped{};          // by DropReason
   std::array< U64, kVerdicts > copies{};              // by Verdict

   U64 operator[]( FrameKind kind ) const {
      return forwarded[ static_cast< std::size_t >( kind ) ];
   }
   U64 operator[]( DropReason reason ) const {
      return dropped[ static_cast< std::size_t >( reason ) ];
   }
   U64 operator[]( Verdict verdict ) const {
      return copies[ static_cast< std::size_t >( verdict ) ];
   }
};

class Pipeline {
 public:
   // In bytes, without the frame check sequence: jumbo frames and their outer headers.
   static constexpr std::size_t kLargestFrame = 9600;

   // The units outlive the pipeline. It forwards nothing before the first forwardingIs().
   explicit Pipeline( Units const & units );
   Pipeline( Pipeline const & ) = delete;
   Pipeline & operator=( Pipeline const & ) = delete;
   ~Pipeline();

   // Forwards like this from now on. A learned address stays if its interface or tunnel is still
   // there and the VLAN still reaches it. Throws Quelm::Error, and goes on as before, when
   // checkForwarding() does or an interface is of a unit that does not exist.
   void forwardingIs( ForwardingConfig const & config );
   ForwardingConfig const & forwarding() const;

   // One frame. `arrival` is known by its unit and logical port. The story is valid until the next
   // frame or change.
   FrameStory const & forward( VornalTypes::VornalPort arrival, std::span< U8 const > frame,
                               Transmitter & transmitter );

   PipelineCounters const & counters() const;

   // How many MAC addresses have been learned.
   std::size_t learned() const;
   // All of them, by VLAN and address.
   std::vector< LearnedMac > macs() const;

   // What forward() would do with that frame. Nothing changes: no address is learned, nothing is
   // counted or transmitted, and the story of the last frame stays valid. It costs a copy of the
   // MAC table. Explanation/Explanation.h says in full why the frame goes where it does.
   Rehearsal rehearse( VornalTypes::VornalPort arrival, std::span< U8 const > frame ) const;

 private:
   class Engine;
   std::unique_ptr< Engine > engine_;
};

}  // namespace Chip
