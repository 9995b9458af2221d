// Why a frame would leave by a port, or not: everything that the chip reads, looks up and compares
// on the frame's way, as values. Whoever shows it to a person finds the words.
//
// explain() lets the pipeline rehearse the frame (Pipeline/Rehearsal.h), which gives the story that
// forward() would give. The rest is worked out beside it: the headers are read again, further than
// the pipeline needs them (DecodedFrame.h); each lookup of the field processor is done again rule
// by rule (Comparison.h); and each interface without a copy gets its reason (NoCopies.h).
//
// Invariants:
// - The story is forward()'s, and `copies` and `ingress` stand in its order.
// - The winner of a comparison is the rule of the story: two ways to the same answer.
// - Each interface and port channel of the forwarding configuration has a copy or a reason.
// - Nothing changes: no address is learned, nothing is counted or transmitted, and the story of the
//   last frame stays valid. The same question has the same answer until something else changes.
//
// Failures: none. A malformed frame is explained as far as it can be read.
//
// Cost: a copy of the MAC table, and a comparison with every rule for each unit and copy. The
// pipeline pays nothing while nobody asks.
//
// Threads: as forward(): one at a time, a holder of the activity lock.
//
//    Chip::Explanation const why = Chip::explain( pipeline, { 0, 49 }, frame, { .nearMisses = 3 }
//    ); for ( Chip::CopyExplanation const & copy : why.copies ) { ... }
#pragma once

#include <span>

#include <Explanation/Comparison.h>
#include <Explanation/DecodedFrame.h>
#include <Explanation/NoCopies.h>
#include <Pipeline/Pipeline.h>

namespace Chip {

struct DomainFields {
   Vlan vlan = 0;
   Vni vni = 0;  // 0 for none

   friend bool operator==( DomainFields const &, DomainFields const & ) = default;
};

// The source address, and what the MAC table makes of it.
struct SourceExplanation {
   Learning learning{};
   Vlan vlan = 0;
   MacAddress address{};
   MacPlace seen{};                      // where the frame came from
   std::optional< LearnedMac > known{};  // the entry before this frame

   friend bool operator==( SourceExplanation const &, SourceExplanation const & ) = default;
};

// The host route by which a frame to the router goes on.
struct HostRouteExplanation {
   Pelk::IpGenAddr host{};
   HostRoute route{};

   friend bool operator==( HostRouteExplanation const &, HostRouteExplanation const & ) = default;
};

// The route that makes multicast known L3 multicast.
struct MulticastRouteExplanation {
   Pelk::IpGenAddr group{};
   std::vector< Vlan > vlans{};  // for which the group has it; none: all

   friend bool operator==( MulticastRouteExplanation const &,
                           MulticastRouteExplanation const & ) = default;
};

// One unit's ingress lookup.
struct IngressExplanation {
   IngressStory story{};
   IngressFields fields{};
   GroupComparison comparison{};

   friend bool operator==( IngressExplanation const &, IngressExplanation const & ) = default;
};

// The egress mask of the unit's winning ingress rule.
struct MaskExplanation {
   RuleKey rule{};
   bool hasPort = false;  // the copy is held back

   friend bool operator==( MaskExplanation const &, MaskExplanation const & ) = default;
};

// One copy's egress lookup.
struct EgressExplanation {
   EgressFields fields{};
   GroupComparison comparison{};

   friend bool operator==( EgressExplanation const &, EgressExplanation const & ) = default;
};

struct CopyExplanation {
   Copy story{};
   // None where the winning rule has no mask, and where the copy ended before the rules.
   std::optional< MaskExplanation > mask{};
   // None where the copy ended before the egress rules.
   std::optional< EgressExplanation > egress{};
   // The answer of the interface's designated-forwarder state; none where it was not asked.
   std::optional< bool > isDesignated{};

   friend bool operator==( CopyExplanation const &, CopyExplanation const & ) = default;
};

struct Explanation {
   U64 number = 0;  // that the frame would have, counted from 1
   FrameStory story{};
   DecodedFrame headers{};

   // --- The forwarding decision. Each is none where the frame did not get there
   std::optional< DomainFields > arrivalDomain{};  // none also where no domain has the VLAN
   std::optional< SourceExplanation > source{};
   std::optional< DomainFields > domain{};  // in which it is forwarded
   std::optional< HostRouteExplanation > hostRoute{};
   std::optional< MulticastRouteExplanation > multicastRoute{};
   std::optional< DestinationLookup > destination{};  // none also for a frame for several

   std::vector< IngressExplanation > ingress{};
   std::vector< CopyExplanation > copies{};
   std::vector< NoCopy > noCopies{};

   friend bool operator==( Explanation const &, Explanation const & ) = default;
};

struct ExplanationLimits {
   // How many rules that miss a frame are told, for each lookup.
   std::size_t nearMisses = std::numeric_limits< std::size_t >::max();
};

// What forward() would do with that frame, and why.
Explanation explain( Pipeline const & pipeline, VornalTypes::VornalPort arrival,
                     std::span< U8 const > frame, ExplanationLimits const & limits = {} );

}  // namespace Chip
