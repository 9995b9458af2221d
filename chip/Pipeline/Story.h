// The story of one frame: where it came from, its kind, and its fate at every port that was
// considered, with the rule if one decided.
//
// The pipeline fills one story and uses it again for the next frame. To keep it, make a
// copy.
#pragma once

#include <array>
#include <optional>
#include <string_view>
#include <vector>

#include <FieldProcessor/RuleKey.h>
#include <Frames/MacAddress.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Pipeline/FrameKind.h>
#include <Pipeline/Reasons.h>
#include <VornalTypes/VornalPort.h>

namespace Chip {

// The outer headers of a frame that came in VXLAN, as far as they could be read.
struct TunnelStory {
   Pelk::IpGenAddr source{};
   Pelk::IpGenAddr destination{};
   std::optional< U32 > vni{};
   // The virtual port of the source VTEP; none when that is not known.
   std::optional< U32 > sourceGport{};

   friend bool operator==( TunnelStory const &, TunnelStory const & ) = default;
};

struct IpStory {
   Pelk::IpGenAddr source{};
   Pelk::IpGenAddr destination{};

   friend bool operator==( IpStory const &, IpStory const & ) = default;
};

// The frame itself, as a host has sent it.
struct InnerStory {
   MacAddress source{};
   MacAddress destination{};
   U16 vlan = 0;       // its bridge domain's
   U16 etherType = 0;  // behind a VLAN tag, if there is one
   std::optional< IpStory > ip{};

   friend bool operator==( InnerStory const &, InnerStory const & ) = default;
};

// The result of one unit's ingress lookup.
struct IngressStory {
   U16 unit = 0;
   std::optional< RuleKey > rule{};  // the winner
   U16 classId = 0;                  // that the rule has set; 0 for none

   friend bool operator==( IngressStory const &, IngressStory const & ) = default;
};

// One port, or one VTEP behind an underlay port, that the frame might have left by.
struct Copy {
   Pelk::IntfId intfId{};           // a port channel's, where the port is a member of one
   VornalTypes::VornalPort port{};  // not valid for Verdict::NoPort
   std::optional< Pelk::IpGenAddr > remoteVtep{};  // to which it was to go in VXLAN
   Verdict verdict = Verdict::Sent;
   std::optional< RuleKey > rule{};  // that decided: for Masked and Dropped

   friend bool operator==( Copy const &, Copy const & ) = default;
};

struct FrameStory {
   VornalTypes::VornalPort arrivalPort{};
   Pelk::IntfId arrivalIntfId{};  // a port channel's, where the port is a member of one
   std::size_t length = 0;        // in bytes, without the frame check sequence
   std::optional< TunnelStory > tunnel{};
   // None for a frame that was dropped before its own headers were read.
   std::optional< InnerStory > inner{};
   // None for a frame that was dropped before it was decided where it belongs.
   std::optional< FrameKind > kind{};
   // Why the whole frame was dropped; there are no copies then.
   std::optional< DropReason > dropReason{};
   // One for each unit that the frame has met, the arrival's first.
   std::vector< IngressStory > ingress{};
   std::vector< Copy > copies{};

   friend bool operator==( FrameStory const &, FrameStory const & ) = default;
};

}  // namespace Chip
