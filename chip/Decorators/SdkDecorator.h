// The base of everything that stands in front of a shim and is one itself.
//
// It hands every operation on to the next shim. A decorator says what it does with field calls in
// the two hooks: what to answer instead of making the call, and what to do once a call has its
// result. Decorators can be stacked in any order; the order decides who sees what. A recorder in
// front of a failing shim records the failures.
//
// The next shim is not owned and outlives the decorator. A decorator is used by one thread at a
// time, as any shim is.
#pragma once

#include <initializer_list>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include <Shim/Shim.h>

namespace Chip {

// A value of a field call: a number, or the name of an action.
struct SdkValue {
   std::string_view name;
   std::variant< U32, std::string_view > value;
};

// A field call that has its result; valid while the hook runs. All names live as long as the
// process.
struct SdkCall {
   std::string_view operation;
   U32 unit;
   U32 entry;
   std::span< SdkValue const > values;  // what was passed, or what was read back if anything was
   S32 rc;
};

class SdkDecorator : public Shim::Sdk {
 public:
   explicit SdkDecorator( Shim::Sdk & next ) : next_( next ) {}
   SdkDecorator( SdkDecorator const & ) = delete;
   SdkDecorator & operator=( SdkDecorator const & ) = delete;
   ~SdkDecorator() override = default;

   S32 bcm_field_qualify_SrcVxlanGport( U32 unit, U32 entry, U32 gport ) override;
   S32 bcm_field_qualify_PacketRes( U32 unit, U32 entry, U32 data, U32 mask ) override;
   S32 bcm_field_qualify_TunnelTerminated( U32 unit, U32 entry, U8 data, U8 mask ) override;
   S32 bcm_field_qualify_VxlanNetworkId( U32 unit, U32 entry, U32 data, U32 mask ) override;
   S32 bcm_field_qualify_DstPort( U32 unit, U32 entry, U32 modId, U32 modIdMask, U32 port,
                                  U32 portMask ) override;
   S32 bcm_field_qualify_IpType( U32 unit, U32 entry, bcm_field_IpType_t ipType ) override;
   S32 bcm_field_qualify_IngressClassField( U32 unit, U32 entry, U32 data, U32 mask ) override;
   S32 bcm_field_action_add( U32 unit, U32 entry, bcm_field_action_t action, U32 param0,
                             U32 param1 ) override;

   S32 bcm_field_qualify_SrcVxlanGport_get( U32 unit, U32 entry, U32 * gport ) override;
   S32 bcm_field_qualify_PacketRes_get( U32 unit, U32 entry, U32 * data, U32 * mask ) override;
   S32 bcm_field_qualify_TunnelTerminated_get( U32 unit, U32 entry, U8 * data, U8 * mask ) override;
   S32 bcm_field_qualify_VxlanNetworkId_get( U32 unit, U32 entry, U32 * data, U32 * mask ) override;
   S32 bcm_field_qualify_DstPort_get( U32 unit, U32 entry, U32 * modId, U32 * modIdMask, U32 * port,
                                      U32 * portMask ) override;
   S32 bcm_field_qualify_IpType_get( U32 unit, U32 entry, bcm_field_IpType_t * ipType ) override;
   S32 bcm_field_qualify_IngressClassField_get( U32 unit, U32 entry, U32 * data,
                                                U32 * mask ) override;
   S32 bcm_field_action_get( U32 unit, U32 entry, bcm_field_action_t action, U32 * param0,
                             U32 * param1 ) override;

   void beforeFieldCall() override { next_.beforeFieldCall(); }
   void fieldCallFailed() override { next_.fieldCallFailed(); }

   S32 successCode() const override { return next_.successCode(); }
   std::string errorText( S32 rc ) const override { return next_.errorText( rc ); }
   U32 packetResL3McKnown() const override { return next_.packetResL3McKnown(); }
   U32 vxlanGport( U16 vpIndex ) const override { return next_.vxlanGport( vpIndex ); }

   void pbmpClear( _shr_pbmp & pbmp ) const override { next_.pbmpClear( pbmp ); }
   bool pbmpEqual( _shr_pbmp const & a, _shr_pbmp const & b ) const override {
      return next_.pbmpEqual( a, b );
   }
   U32 pbmpCount( _shr_pbmp const & pbmp ) const override { return next_.pbmpCount( pbmp ); }

 protected:
   // The result of a field call that is not to be made; nothing to let it be made.
   virtual std::optional< S32 > resultInsteadOf( std::string_view operation );
   // Runs after every field call, made or not.
   virtual void done( SdkCall const & call );

 private:
   template< typename Make >
   S32 write( std::string_view operation, U32 unit, U32 entry,
              std::initializer_list< SdkValue > values, Make make );
   template< typename Make, typename Values >
   S32 read( std::string_view operation, U32 unit, U32 entry, Make make, Values values );

   Shim::Sdk & next_;
};

}  // namespace Chip
