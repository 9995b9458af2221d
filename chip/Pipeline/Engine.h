// The pipeline's work on one frame, step by step as Pipeline.h lists them. One engine serves one
// frame after the other and keeps its buffers in between. A copy of it forwards as the original
// would: it has the same tables, and learned addresses and counters of its own.
#pragma once

#include <Pipeline/Departure.h>
#include <Pipeline/MacTable.h>
#include <Pipeline/Pipeline.h>
#include <Pipeline/Rehearsal.h>
#include <Pipeline/Routing.h>
#include <Pipeline/RuleCheck.h>

namespace Chip {

class Pipeline::Engine {
 public:
   explicit Engine( Units const & units );

   void forwardingIs( ForwardingConfig const & config );
   FrameStory const & forward( VornalTypes::VornalPort arrival, Bytes frame,
                               Transmitter & transmitter );

   Rehearsal rehearse( VornalTypes::VornalPort arrival, Bytes frame ) const;

   ForwardingConfig const & forwarding() const { return tables_->config; }
   PipelineCounters const & counters() const { return counters_; }
   std::size_t learned() const { return macs_.size(); }
   std::vector< LearnedMac > macs() const { return macs_.entries( *tables_ ); }

 private:
   using Failure = std::optional< DropReason >;

   // The frame under way. The fields stand in the order in which they become known.
   struct Frame {
      Index unit = kNone;       // of arrival
      Index interface = kNone;  // of arrival
      Bytes bytes{};            // behind the outer headers
      EthernetHeader ethernet{};
      Index tunnel = kNone;  // that it came through
      Index domain = kNone;  // in which it is forwarded
      InnerIp ip{};
      U32 flowHash = 0;
      std::optional< Learning > learning{};
      FrameKind kind = FrameKind::Broadcast;
      Place destination{};  // of unicast
      Route route{};        // of routed unicast
   };

   // --- The steps; each may find that the frame goes no further
   Failure prepare( VornalTypes::VornalPort arrival, Bytes frame );
   Failure arrive( VornalTypes::VornalPort arrival, Bytes frame );
   Failure admitFromTunnel( Bytes frame );
   Failure admitFromAccess( Bytes frame );
   void readHeaders( Bytes bytes, EthernetHeader const & ethernet, Vlan vlan );
   void learn();
   Failure decide();
   Failure decideRouted();
   Failure findDestination( MacAddress address, FrameKind ifKnown );
   void startRuleCheck();
   IngressFields ingressFields() const;
   void replicate();

   // --- Copies
   void flood();
   void copyTo( DomainInterface const & to );
   void copyInto( Index tunnel );
   void judge( Copy & copy, bool isDesignated );
   Copy & addCopy( Index interface );
   // The member of an interface or the interface of a list that a flow takes: where its hash, as a
   // fraction of its range, falls on the list. A division would cost more than a lookup. How far
   // into its place it falls is left of the hash, for a choice that does not follow from this one.
   template< typename List > static auto chosen( List const & list, U32 & hash ) {
      U64 const fall = U64{ hash } * list.size();
      hash = static_cast< U32 >( fall );
      return list[ fall >> 32 ];
   }

   std::optional< DestinationLookup > destinationLookup() const;
   bool isFromTunnel() const { return frame_.tunnel != kNone; }
   void count();

   Units const & units_;
   std::shared_ptr< Tables const > tables_;
   MacTable macs_;
   PipelineCounters counters_;

   Frame frame_;
   FrameStory story_;
   RuleCheck rules_;
   Departure departure_;
   Transmitter * transmitter_ = nullptr;
};

}  // namespace Chip
