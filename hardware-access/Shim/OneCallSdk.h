// A shim whose field calls all come to one function.
//
// A recorder, a counter, a shim that lets calls fail: each treats all field calls alike. It derives
// from OneCallSdk and implements make(), which takes the call as values.
//
//    class Counter final : public Shim::OneCallSdk {
//       S32 make( Shim::Call & call ) override {
//          ++calls[ rowOf( call.operation ).name ];
//          return next.make( call );
//       }
//       ...
//    };
//
// Any shim can be asked to make() such a call: one that is no OneCallSdk makes it by its
// operations.
//
// A new operation of Shim::Sdk needs its name, its row and its override here. Whatever derives from
// OneCallSdk needs nothing.
#pragma once

#include <algorithm>
#include <array>
#include <string_view>
#include <tuple>
#include <utility>

#include <Quelm/Assert.h>
#include <Shim/Shim.h>

namespace Shim {

enum class FieldOperation : U8 {
   QualifySrcVxlanGport,
   QualifyPacketRes,
   QualifyTunnelTerminated,
   QualifyVxlanNetworkId,
   QualifyDstPort,
   QualifyIpType,
   QualifyIngressClassField,
   AddAction,
   GetSrcVxlanGport,
   GetPacketRes,
   GetTunnelTerminated,
   GetVxlanNetworkId,
   GetDstPort,
   GetIpType,
   GetIngressClassField,
   GetAction,
};

// The values of a call, in the order of the operation's declaration.
class CallValues {
 public:
   static constexpr std::size_t kMost = 4;

   std::size_t size() const { return size_; }
   U32 operator[]( std::size_t position ) const {
      QUELM_ASSERT( position < size_ );
      return values_[ position ];
   }
   void add( U32 value ) {
      QUELM_ASSERT( size_ < kMost );
      values_[ size_++ ] = value;
   }

 private:
   std::array< U32, kMost > values_{};
   std::size_t size_ = 0;
};

// One field call. At first it has the values that are passed. A shim that reads back adds the
// values read; it adds none when the call fails.
struct Call {
   FieldOperation operation;
   U32 unit;
   U32 entry;
   CallValues values{};

   // Whether all values are there: those of a read-back have been read.
   bool isComplete() const;
};

struct FieldOperationRow {
   FieldOperation operation;
   std::string_view name;
   std::array< std::string_view, CallValues::kMost > valueNames;  // as declared; empty beyond them
   S32 ( *make )( Sdk & sdk, Call & call );  // makes the call by that operation of the shim

   constexpr std::size_t valueCount() const {
      auto const * const end = std::find( valueNames.begin(), valueNames.end(), "" );
      return static_cast< std::size_t >( end - valueNames.begin() );
   }
};

namespace Detail {

// One argument of an operation: a value of the call,
template< typename Argument > class Slot {
 public:
   Slot( Call const & call, std::size_t position )
         : value_( static_cast< Argument >( call.values[ position ] ) ) {}

   Argument argument() { return value_; }
   void addTo( Call & ) const {}

 private:
   Argument value_;
};
// or the room for one that is read back.
template< typename Value > class Slot< Value * > {
 public:
   Slot( Call const &, std::size_t ) {}

   Value * argument() { return &value_; }
   void addTo( Call & call ) const { call.values.add( static_cast< U32 >( value_ ) ); }

 private:
   Value value_{};
};

template< typename... Arguments, std::size_t... positions >
S32 make( S32 ( Sdk::*operation )( U32, U32, Arguments... ), Sdk & sdk, Call & call,
          std::index_sequence< positions... > ) {
   std::tuple< Slot< Arguments >... > slots( Slot< Arguments >( call, positions )... );
   S32 const rc =
      ( sdk.*operation )( call.unit, call.entry, std::get< positions >( slots ).argument()... );
   if ( rc >= 0 ) {
      ( std::get< positions >( slots ).addTo( call ), ... );
   }
   return rc;
}

template< typename... Arguments >
S32 make( S32 ( Sdk::*operation )( U32, U32, Arguments... ), Sdk & sdk, Call & call ) {
   return make( operation, sdk, call, std::index_sequence_for< Arguments... >() );
}

template< auto operation > S32 makeBy( Sdk & sdk, Call & call ) {
   return make( operation, sdk, call );
}

}  // namespace Detail

// By FieldOperation.
inline constexpr std::array kFieldOperations{
   FieldOperationRow{ FieldOperation::QualifySrcVxlanGport,
                      "bcm_field_qualify_SrcVxlanGport",
                      { "gport" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_SrcVxlanGport > },
   FieldOperationRow{ FieldOperation::QualifyPacketRes,
                      "bcm_field_qualify_PacketRes",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_PacketRes > },
   FieldOperationRow{ FieldOperation::QualifyTunnelTerminated,
                      "bcm_field_qualify_TunnelTerminated",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_TunnelTerminated > },
   FieldOperationRow{ FieldOperation::QualifyVxlanNetworkId,
                      "bcm_field_qualify_VxlanNetworkId",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_VxlanNetworkId > },
   FieldOperationRow{ FieldOperation::QualifyDstPort,
                      "bcm_field_qualify_DstPort",
                      { "modId", "modIdMask", "port", "portMask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_DstPort > },
   FieldOperationRow{ FieldOperation::QualifyIpType,
                      "bcm_field_qualify_IpType",
                      { "ipType" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_IpType > },
   FieldOperationRow{ FieldOperation::QualifyIngressClassField,
                      "bcm_field_qualify_IngressClassField",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_IngressClassField > },
   FieldOperationRow{ FieldOperation::AddAction,
                      "bcm_field_action_add",
                      { "action", "param0", "param1" },
                      Detail::makeBy< &Sdk::bcm_field_action_add > },
   FieldOperationRow{ FieldOperation::GetSrcVxlanGport,
                      "bcm_field_qualify_SrcVxlanGport_get",
                      { "gport" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_SrcVxlanGport_get > },
   FieldOperationRow{ FieldOperation::GetPacketRes,
                      "bcm_field_qualify_PacketRes_get",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_PacketRes_get > },
   FieldOperationRow{ FieldOperation::GetTunnelTerminated,
                      "bcm_field_qualify_TunnelTerminated_get",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_TunnelTerminated_get > },
   FieldOperationRow{ FieldOperation::GetVxlanNetworkId,
                      "bcm_field_qualify_VxlanNetworkId_get",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_VxlanNetworkId_get > },
   FieldOperationRow{ FieldOperation::GetDstPort,
                      "bcm_field_qualify_DstPort_get",
                      { "modId", "modIdMask", "port", "portMask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_DstPort_get > },
   FieldOperationRow{ FieldOperation::GetIpType,
                      "bcm_field_qualify_IpType_get",
                      { "ipType" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_IpType_get > },
   FieldOperationRow{ FieldOperation::GetIngressClassField,
                      "bcm_field_qualify_IngressClassField_get",
                      { "data", "mask" },
                      Detail::makeBy< &Sdk::bcm_field_qualify_IngressClassField_get > },
   FieldOperationRow{ FieldOperation::GetAction,
                      "bcm_field_action_get",
                      { "action", "param0", "param1" },
                      Detail::makeBy< &Sdk::bcm_field_action_get > },
};

constexpr FieldOperationRow const & rowOf( FieldOperation operation ) {
   return kFieldOperations[ static_cast< std::size_t >( operation ) ];
}
static_assert( std::all_of( kFieldOperations.begin(), kFieldOperations.end(),
                            []( FieldOperationRow const & row ) {
                               return &row == &rowOf( row.operation );
                            } ),
               "the rows stand in the order of FieldOperation" );

inline bool Call::isComplete() const {
   return values.size() == rowOf( operation ).valueCount();
}

class OneCallSdk : public Sdk {
 public:
   S32 make( Call & call ) override = 0;

   S32 bcm_field_qualify_SrcVxlanGport( U32 unit, U32 entry, U32 gport ) final {
      return pass( FieldOperation::QualifySrcVxlanGport, unit, entry, gport );
   }
   S32 bcm_field_qualify_PacketRes( U32 unit, U32 entry, U32 data, U32 mask ) final {
      return pass( FieldOperation::QualifyPacketRes, unit, entry, data, mask );
   }
   S32 bcm_field_qualify_TunnelTerminated( U32 unit, U32 entry, U8 data, U8 mask ) final {
      return pass( FieldOperation::QualifyTunnelTerminated, unit, entry, data, mask );
   }
   S32 bcm_field_qualify_VxlanNetworkId( U32 unit, U32 entry, U32 data, U32 mask ) final {
      return pass( FieldOperation::QualifyVxlanNetworkId, unit, entry, data, mask );
   }
   S32 bcm_field_qualify_DstPort( U32 unit, U32 entry, U32 modId, U32 modIdMask, U32 port,
                                  U32 portMask ) final {
      return pass( FieldOperation::QualifyDstPort, unit, entry, modId, modIdMask, port, portMask );
   }
   S32 bcm_field_qualify_IpType( U32 unit, U32 entry, bcm_field_IpType_t ipType ) final {
      return pass( FieldOperation::QualifyIpType, unit, entry, ipType );
   }
   S32 bcm_field_qualify_IngressClassField( U32 unit, U32 entry, U32 data, U32 mask ) final {
      return pass( FieldOperation::QualifyIngressClassField, unit, entry, data, mask );
   }
   S32 bcm_field_action_add( U32 unit, U32 entry, bcm_field_action_t action, U32 param0,
                             U32 param1 ) final {
      return pass( FieldOperation::AddAction, unit, entry, action, param0, param1 );
   }

   S32 bcm_field_qualify_SrcVxlanGport_get( U32 unit, U32 entry, U32 * gport ) final {
      return pass( FieldOperation::GetSrcVxlanGport, unit, entry, gport );
   }
   S32 bcm_field_qualify_PacketRes_get( U32 unit, U32 entry, U32 * data, U32 * mask ) final {
      return pass( FieldOperation::GetPacketRes, unit, entry, data, mask );
   }
   S32 bcm_field_qualify_TunnelTerminated_get( U32 unit, U32 entry, U8 * data, U8 * mask ) final {
      return pass( FieldOperation::GetTunnelTerminated, unit, entry, data, mask );
   }
   S32 bcm_field_qualify_VxlanNetworkId_get( U32 unit, U32 entry, U32 * data, U32 * mask ) final {
      return pass( FieldOperation::GetVxlanNetworkId, unit, entry, data, mask );
   }
   S32 bcm_field_qualify_DstPort_get( U32 unit, U32 entry, U32 * modId, U32 * modIdMask, U32 * port,
                                      U32 * portMask ) final {
      return pass( FieldOperation::GetDstPort, unit, entry, modId, modIdMask, port, portMask );
   }
   S32 bcm_field_qualify_IpType_get( U32 unit, U32 entry, bcm_field_IpType_t * ipType ) final {
      return pass( FieldOperation::GetIpType, unit, entry, ipType );
   }
   S32 bcm_field_qualify_IngressClassField_get( U32 unit, U32 entry, U32 * data,
                                                U32 * mask ) final {
      return pass( FieldOperation::GetIngressClassField, unit, entry, data, mask );
   }
   S32 bcm_field_action_get( U32 unit, U32 entry, bcm_field_action_t action, U32 * param0,
                             U32 * param1 ) final {
      return pass( FieldOperation::GetAction, unit, entry, action, param0, param1 );
   }

 private:
   // Makes the call. A pointer takes a value that is read back, and is left alone when none is.
   template< typename... Arguments >
   S32 pass( FieldOperation operation, U32 unit, U32 entry, Arguments... arguments ) {
      Call call{ operation, unit, entry };
      ( addPassed( call, arguments ), ... );
      std::size_t next = call.values.size();
      S32 const rc = make( call );
      if ( call.isComplete() ) {
         ( takeReadBack( call, next, arguments ), ... );
      }
      return rc;
   }

   static void addPassed( Call & call, U32 value ) { call.values.add( value ); }
   template< typename Value > static void addPassed( Call &, Value * ) {}

   static void takeReadBack( Call const &, std::size_t &, U32 ) {}
   template< typename Value >
   static void takeReadBack( Call const & call, std::size_t & next, Value * value ) {
      *value = static_cast< Value >( call.values[ next++ ] );
   }
};

}  // namespace Shim
