// What rules are made of: the qualifiers and actions of both kinds of group, and the fields of a
// frame that the qualifiers are compared with.
//
//    kind      qualifiers                                                 actions
//    Ingress   SrcVxlanGport, PacketRes, TunnelTerminated, VxlanNetworkId EgressMask,
//                                                                         EgressClassSelect,
//                                                                         NewClassId
//    Egress    DstPort, IpType, IngressClassField                         Drop
//
// A qualifier compares under a mask: bits outside of it match whatever the frame has there. A field
// that a rule does not qualify matches every frame.
#pragma once

#include <array>
#include <optional>
#include <string_view>

#include <Brum/PerUnitBitmap.h>
#include <Quelm/Integers.h>
#include <Shim/Sdk.h>

namespace Chip {

enum class GroupKind : U8 { Ingress, Egress };

enum class Qualifier : U8 {
   SrcVxlanGport,
   PacketRes,
   TunnelTerminated,
   VxlanNetworkId,
   DstPort,
   IpType,
   IngressClassField,
};
inline constexpr std::array kQualifiers{ Qualifier::SrcVxlanGport,    Qualifier::PacketRes,
                                         Qualifier::TunnelTerminated, Qualifier::VxlanNetworkId,
                                         Qualifier::DstPort,          Qualifier::IpType,
                                         Qualifier::IngressClassField };

enum class Action : U8 { EgressMask, EgressClassSelect, NewClassId, Drop };
inline constexpr std::array kActions{ Action::EgressMask, Action::EgressClassSelect,
                                      Action::NewClassId, Action::Drop };

// The names as above.
std::string_view nameOf( GroupKind kind );
std::string_view nameOf( Qualifier qualifier );
std::string_view nameOf( Action action );

constexpr GroupKind kindOf( Qualifier qualifier ) {
   return qualifier < Qualifier::DstPort ? GroupKind::Ingress : GroupKind::Egress;
}
constexpr GroupKind kindOf( Action action ) {
   return action < Action::Drop ? GroupKind::Ingress : GroupKind::Egress;
}

// The action that the SDK calls by this number; none for a number that is no action of this chip.
std::optional< Action > actionOf( bcm_field_action_t action );

// What one qualifier compares a field with.
struct Match {
   U32 data = 0;
   U32 mask = 0;
   // DstPort only, whose data and mask are the logical port's.
   U32 modId = 0;
   U32 modIdMask = 0;

   friend bool operator==( Match const &, Match const & ) = default;
};

// What one action does.
struct ActionParameters {
   U32 param0 = 0;  // EgressClassSelect: the class selected; NewClassId: the class id
   U32 param1 = 0;
   // EgressMask only: the frame does not leave by these.
   Brum::PerUnitBitmap ports{};

   friend bool operator==( ActionParameters const &, ActionParameters const & ) = default;
};

// A frame as the ingress field processor sees it.
struct IngressFields {
   U32 srcVxlanGport = 0;  // 0 when it did not come through a tunnel
   U32 packetRes = 0;
   bool tunnelTerminated = false;
   U32 vxlanNetworkId = 0;  // of the tunnel; 0 without one
};

// One copy of a frame as the egress field processor sees it.
struct EgressFields {
   U32 dstModId = 0;
   U32 dstPort = 0;                                  // logical port
   bcm_field_IpType_t ipType = bcmFieldIpTypeNonIp;  // the frame's own: never "any"
   U32 ingressClass = 0;                             // what ingress has set; 0 when nothing has
};

}  // namespace Chip
