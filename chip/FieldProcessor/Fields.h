// The parts of a rule: the qualifiers and actions of both kinds of group, and the fields of a frame
// that the qualifiers are compared with.
//
// Two tables say everything about a qualifier or an action; the shim, the lookup and the texts read
// them. A new qualifier of the SDK (Shim/Shim.h, Shim/OneCallSdk.h) needs a row here, the field of
// the frame that it is compared with, and the pipeline to fill that field.
//
// A qualifier compares under a mask: bits outside of it match whatever the frame has there. A field
// that a rule does not qualify matches every frame.
#pragma once

#include <algorithm>
#include <array>
#include <limits>
#include <optional>
#include <string_view>

#include <Brum/PerUnitBitmap.h>
#include <FieldProcessor/Gport.h>
#include <Quelm/Integers.h>
#include <Shim/OneCallSdk.h>
#include <Shim/Sdk.h>

namespace Chip {

enum class GroupKind : U8 { Ingress, Egress };

// --- Qualifiers

enum class Qualifier : U8 {
   SrcVxlanGport,
   PacketRes,
   TunnelTerminated,
   VxlanNetworkId,
   DstPort,
   IpType,
   IngressClassField,
};

// The data and mask that one qualifier compares a field with.
struct Match {
   U32 data = 0;
   U32 mask = 0;
   // Of a qualifier with a module id, whose data and mask are the port's.
   U32 modId = 0;
   U32 modIdMask = 0;

   friend bool operator==( Match const &, Match const & ) = default;
};

struct QualifierRow {
   Qualifier qualifier;
   std::string_view name;
   GroupKind kind;
   // The place of its field in the lookup key of its kind; a module id has the next one.
   std::size_t keyPosition;
   Shim::FieldOperation qualify;
   Shim::FieldOperation get;
   // Without a mask of its own it compares all bits, and none when the value is `any`.
   bool hasMask = true;
   std::optional< U32 > any{};
   bool hasModule = false;
   // The values that can be meant.
   U32 lowest = 0;
   U32 highest = std::numeric_limits< U32 >::max();
   bool isHexadecimal = false;  // in texts
};

// By Qualifier.
inline constexpr std::array kQualifierTable{
   QualifierRow{ .qualifier = Qualifier::SrcVxlanGport,
                 .name = "SrcVxlanGport",
                 .kind = GroupKind::Ingress,
                 .keyPosition = 0,
                 .qualify = Shim::FieldOperation::QualifySrcVxlanGport,
                 .get = Shim::FieldOperation::GetSrcVxlanGport,
                 .hasMask = false,
                 .lowest = vxlanGportOf( 0 ),
                 .highest = vxlanGportOf( std::numeric_limits< U16 >::max() ),
                 .isHexadecimal = true },
   QualifierRow{ .qualifier = Qualifier::PacketRes,
                 .name = "PacketRes",
                 .kind = GroupKind::Ingress,
                 .keyPosition = 1,
                 .qualify = Shim::FieldOperation::QualifyPacketRes,
                 .get = Shim::FieldOperation::GetPacketRes },
   QualifierRow{ .qualifier = Qualifier::TunnelTerminated,
                 .name = "TunnelTerminated",
                 .kind = GroupKind::Ingress,
                 .keyPosition = 2,
                 .qualify = Shim::FieldOperation::QualifyTunnelTerminated,
                 .get = Shim::FieldOperation::GetTunnelTerminated },
   QualifierRow{ .qualifier = Qualifier::VxlanNetworkId,
                 .name = "VxlanNetworkId",
                 .kind = GroupKind::Ingress,
                 .keyPosition = 3,
                 .qualify = Shim::FieldOperation::QualifyVxlanNetworkId,
                 .get = Shim::FieldOperation::GetVxlanNetworkId },
   QualifierRow{ .qualifier = Qualifier::DstPort,
                 .name = "DstPort",
                 .kind = GroupKind::Egress,
                 .keyPosition = 0,
                 .qualify = Shim::FieldOperation::QualifyDstPort,
                 .get = Shim::FieldOperation::GetDstPort,
                 .hasModule = true },
   QualifierRow{ .qualifier = Qualifier::IpType,
                 .name = "IpType",
                 .kind = GroupKind::Egress,
                 .keyPosition = 2,
                 .qualify = Shim::FieldOperation::QualifyIpType,
                 .get = Shim::FieldOperation::GetIpType,
                 .hasMask = false,
                 .any = bcmFieldIpTypeAny,
                 .highest = bcmFieldIpTypeIpv6 },
   QualifierRow{ .qualifier = Qualifier::IngressClassField,
                 .name = "IngressClassField",
                 .kind = GroupKind::Egress,
                 .keyPosition = 3,
                 .qualify = Shim::FieldOperation::QualifyIngressClassField,
                 .get = Shim::FieldOperation::GetIngressClassField },
};

// --- Actions

enum class Action : U8 { EgressMask, EgressClassSelect, NewClassId, Drop };

// The parameters of one action.
struct ActionParameters {
   U32 param0 = 0;  // EgressClassSelect: the class selected; NewClassId: the class id
   U32 param1 = 0;
   // EgressMask only: the frame does not leave by these.
   Brum::PerUnitBitmap ports{};

   friend bool operator==( ActionParameters const &, ActionParameters const & ) = default;
};

// The parameters that an action uses.
enum class ParametersUsed : U8 { None, Number, Ports };

struct ActionRow {
   Action action;
   std::string_view name;
   GroupKind kind;
   ParametersUsed parameters;
   // None for an action that only entry managers add.
   std::optional< bcm_field_action_t > sdkAction{};
   // The values of param0 that can be meant.
   U32 lowest = 0;
   U32 highest = std::numeric_limits< U32 >::max();
};

// By Action.
inline constexpr std::array kActionTable{
   ActionRow{ .action = Action::EgressMask,
              .name = "EgressMask",
              .kind = GroupKind::Ingress,
              .parameters = ParametersUsed::Ports },
   ActionRow{ .action = Action::EgressClassSelect,
              .name = "EgressClassSelect",
              .kind = GroupKind::Ingress,
              .parameters = ParametersUsed::Number,
              .sdkAction = bcmFieldActionEgressClassSelect,
              .lowest = BCM_FIELD_EGRESS_CLASS_SELECT_NEW,
              .highest = BCM_FIELD_EGRESS_CLASS_SELECT_NEW },
   ActionRow{ .action = Action::NewClassId,
              .name = "NewClassId",
              .kind = GroupKind::Ingress,
              .parameters = ParametersUsed::Number,
              .sdkAction = bcmFieldActionNewClassId,
              .highest = std::numeric_limits< U16 >::max() },
   ActionRow{ .action = Action::Drop,
              .name = "Drop",
              .kind = GroupKind::Egress,
              .parameters = ParametersUsed::None,
              .sdkAction = bcmFieldActionDrop },
};

// --- Out of the tables

constexpr QualifierRow const & rowOf( Qualifier qualifier ) {
   return kQualifierTable[ static_cast< std::size_t >( qualifier ) ];
}
constexpr ActionRow const & rowOf( Action action ) {
   return kActionTable[ static_cast< std::size_t >( action ) ];
}

inline constexpr auto kQualifiers = [] {
   std::array< Qualifier, kQualifierTable.size() > all{};
   std::transform( kQualifierTable.begin(), kQualifierTable.end(), all.begin(),
                   []( QualifierRow const & row ) { return row.qualifier; } );
   return all;
}();
inline constexpr auto kActions = [] {
   std::array< Action, kActionTable.size() > all{};
   std::transform( kActionTable.begin(), kActionTable.end(), all.begin(),
                   []( ActionRow const & row ) { return row.action; } );
   return all;
}();
static_assert( std::all_of( kQualifierTable.begin(), kQualifierTable.end(),
                            []( QualifierRow const & row ) {
                               return &row == &rowOf( row.qualifier );
                            } ),
               "the rows stand in the order of Qualifier" );
static_assert( std::all_of( kActionTable.begin(), kActionTable.end(),
                            []( ActionRow const & row ) { return &row == &rowOf( row.action ); } ),
               "the rows stand in the order of Action" );

constexpr std::string_view nameOf( Qualifier qualifier ) {
   return rowOf( qualifier ).name;
}
constexpr std::string_view nameOf( Action action ) {
   return rowOf( action ).name;
}
constexpr GroupKind kindOf( Qualifier qualifier ) {
   return rowOf( qualifier ).kind;
}
constexpr GroupKind kindOf( Action action ) {
   return rowOf( action ).kind;
}

// The action that the SDK calls by this number; none for a number that is no action of this chip.
std::optional< Action > actionOf( U32 sdkAction );

// --- The fields of a frame

// A frame as the ingress field processor sees it.
struct IngressFields {
   U32 srcVxlanGport = 0;  // 0 when it did not come through a tunnel
   U32 packetRes = 0;
   bool tunnelTerminated = false;
   U32 vxlanNetworkId = 0;  // of the tunnel; 0 without one

   friend bool operator==( IngressFields const &, IngressFields const & ) = default;
};

// One copy of a frame as the egress field processor sees it.
struct EgressFields {
   U32 dstModId = 0;
   U32 dstPort = 0;                                  // logical port
   bcm_field_IpType_t ipType = bcmFieldIpTypeNonIp;  // the frame's own: never "any"
   U32 ingressClass = 0;                             // set by the ingress rule; 0 for none

   friend bool operator==( EgressFields const &, EgressFields const & ) = default;
};

inline constexpr std::size_t kKeyFields = [] {
   std::size_t count = 0;
   for ( QualifierRow const & row : kQualifierTable ) {
      count = std::max( count, row.keyPosition + ( row.hasModule ? std::size_t{ 2 } : 1 ) );
   }
   return count + count % 2;
}();

// Fields in the order of the tables' key positions: a frame's, or a rule's data or masks. Each two
// are kept as one number, since a lookup for each copy of each frame masks and compares them.
class KeyFields {
 public:
   constexpr U32 operator[]( std::size_t position ) const {
      return static_cast< U32 >( pairs_[ position / 2 ] >> shift( position ) );
   }
   constexpr void fieldIs( std::size_t position, U32 value ) {
      U64 & pair = pairs_[ position / 2 ];
      pair ^= U64{ ( *this )[ position ] ^ value } << shift( position );
   }

   constexpr KeyFields under( KeyFields const & masks ) const {
      KeyFields result;
      for ( std::size_t n = 0; n < kPairs; ++n ) {
         result.pairs_[ n ] = pairs_[ n ] & masks.pairs_[ n ];
      }
      return result;
   }

   constexpr std::size_t hash() const {
      constexpr U64 odd = 0xff51afd7ed558ccd;  // an odd number without pattern
      U64 mixed = 0;
      for ( U64 const pair : pairs_ ) {
         mixed = ( mixed ^ mixed >> 32 ) * odd ^ pair;
      }
      return static_cast< std::size_t >( mixed ^ mixed >> 32 );
   }

   friend constexpr bool operator==( KeyFields const & a, KeyFields const & b ) {
      U64 difference = 0;
      for ( std::size_t n = 0; n < kPairs; ++n ) {
         difference |= a.pairs_[ n ] ^ b.pairs_[ n ];
      }
      return difference == 0;
   }

 private:
   static constexpr std::size_t kPairs = kKeyFields / 2;
   static constexpr unsigned shift( std::size_t position ) { return position % 2 == 0 ? 0 : 32; }

   std::array< U64, kPairs > pairs_{};
};

constexpr KeyFields keyFieldsOf( IngressFields const & frame ) {
   KeyFields fields{};
   fields.fieldIs( rowOf( Qualifier::SrcVxlanGport ).keyPosition, frame.srcVxlanGport );
   fields.fieldIs( rowOf( Qualifier::PacketRes ).keyPosition, frame.packetRes );
   fields.fieldIs( rowOf( Qualifier::TunnelTerminated ).keyPosition,
                   frame.tunnelTerminated ? 1 : 0 );
   fields.fieldIs( rowOf( Qualifier::VxlanNetworkId ).keyPosition, frame.vxlanNetworkId );
   return fields;
}

constexpr KeyFields keyFieldsOf( EgressFields const & frame ) {
   KeyFields fields{};
   fields.fieldIs( rowOf( Qualifier::DstPort ).keyPosition, frame.dstPort );
   fields.fieldIs( rowOf( Qualifier::DstPort ).keyPosition + 1, frame.dstModId );
   fields.fieldIs( rowOf( Qualifier::IpType ).keyPosition, frame.ipType );
   fields.fieldIs( rowOf( Qualifier::IngressClassField ).keyPosition, frame.ingressClass );
   return fields;
}

}  // namespace Chip
