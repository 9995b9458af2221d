// A shim whose field calls are answered by the test, and written down as they come in.
//
// A call is written down as its name and its values in decimal:
//
//    bcm_field_qualify_PacketRes 2 7 4 255
//
// Read-back leaves the values 101, 102, ... behind, in the order of its pointers, and is written
// down with the values that went in.
#pragma once

#include <algorithm>
#include <bit>
#include <functional>
#include <string>
#include <type_traits>
#include <vector>

#include <Shim/Shim.h>

class ScriptedSdk : public Shim::Sdk {
 public:
   // What each field call does; its result is the call's code.
   std::function< S32() > onCall = [] { return 0; };
   std::function< void() > onBefore = [] {};
   std::function< void() > onFailed = [] {};

   std::vector< std::string > calls;

   ScriptedSdk() { Shim::sdk_ = this; }
   ScriptedSdk( ScriptedSdk const & ) = delete;
   ScriptedSdk & operator=( ScriptedSdk const & ) = delete;
   ~ScriptedSdk() override { Shim::sdk_ = nullptr; }

   S32 bcm_field_qualify_SrcVxlanGport( U32 unit, U32 entry, U32 gport ) override {
      return called( "bcm_field_qualify_SrcVxlanGport", unit, entry, gport );
   }
   S32 bcm_field_qualify_PacketRes( U32 unit, U32 entry, U32 data, U32 mask ) override {
      return called( "bcm_field_qualify_PacketRes", unit, entry, data, mask );
   }
   S32 bcm_field_qualify_TunnelTerminated( U32 unit, U32 entry, U8 data, U8 mask ) override {
      return called( "bcm_field_qualify_TunnelTerminated", unit, entry, data, mask );
   }
   S32 bcm_field_qualify_VxlanNetworkId( U32 unit, U32 entry, U32 data, U32 mask ) override {
      return called( "bcm_field_qualify_VxlanNetworkId", unit, entry, data, mask );
   }
   S32 bcm_field_qualify_DstPort( U32 unit, U32 entry, U32 modId, U32 modIdMask, U32 port,
                                  U32 portMask ) override {
      return called( "bcm_field_qualify_DstPort", unit, entry, modId, modIdMask, port, portMask );
   }
   S32 bcm_field_qualify_IpType( U32 unit, U32 entry, bcm_field_IpType_t ipType ) override {
      return called( "bcm_field_qualify_IpType", unit, entry, ipType );
   }
   S32 bcm_field_qualify_IngressClassField( U32 unit, U32 entry, U32 data, U32 mask ) override {
      return called( "bcm_field_qualify_IngressClassField", unit, entry, data, mask );
   }
   S32 bcm_field_action_add( U32 unit, U32 entry, bcm_field_action_t action, U32 param0,
                             U32 param1 ) override {
      return called( "bcm_field_action_add", unit, entry, action, param0, param1 );
   }
   S32 bcm_field_qualify_SrcVxlanGport_get( U32 unit, U32 entry, U32 * gport ) override {
      return called( "bcm_field_qualify_SrcVxlanGport_get", unit, entry, gport );
   }
   S32 bcm_field_qualify_PacketRes_get( U32 unit, U32 entry, U32 * data, U32 * mask ) override {
      return called( "bcm_field_qualify_PacketRes_get", unit, entry, data, mask );
   }
   S32 bcm_field_qualify_TunnelTerminated_get( U32 unit, U32 entry, U8 * data,
                                               U8 * mask ) override {
      return called( "bcm_field_qualify_TunnelTerminated_get", unit, entry, data, mask );
   }
   S32 bcm_field_qualify_VxlanNetworkId_get( U32 unit, U32 entry, U32 * data,
                                             U32 * mask ) override {
      return called( "bcm_field_qualify_VxlanNetworkId_get", unit, entry, data, mask );
   }
   S32 bcm_field_qualify_DstPort_get( U32 unit, U32 entry, U32 * modId, U32 * modIdMask, U32 * port,
                                      U32 * portMask ) override {
      return called( "bcm_field_qualify_DstPort_get", unit, entry, modId, modIdMask, port,
                     portMask );
   }
   S32 bcm_field_qualify_IpType_get( U32 unit, U32 entry, bcm_field_IpType_t * ipType ) override {
      return called( "bcm_field_qualify_IpType_get", unit, entry, ipType );
   }
   S32 bcm_field_qualify_IngressClassField_get( U32 unit, U32 entry, U32 * data,
                                                U32 * mask ) override {
      return called( "bcm_field_qualify_IngressClassField_get", unit, entry, data, mask );
   }
   S32 bcm_field_action_get( U32 unit, U32 entry, bcm_field_action_t action, U32 * param0,
                             U32 * param1 ) override {
      return called( "bcm_field_action_get", unit, entry, action, param0, param1 );
   }

   void beforeFieldCall() override { onBefore(); }
   void fieldCallFailed() override { onFailed(); }

   S32 successCode() const override { return 0; }
   std::string errorText( S32 rc ) const override {
      return rc == -7 ? "Entry not found" : "Internal error";
   }
   U32 packetResL3McKnown() const override { return 12; }
   U32 vxlanGport( U16 vpIndex ) const override { return 0xb0000000U | vpIndex; }

   void pbmpClear( _shr_pbmp & pbmp ) const override { pbmp.words.fill( 0 ); }
   bool pbmpEqual( _shr_pbmp const & a, _shr_pbmp const & b ) const override {
      return a.words == b.words;
   }
   U32 pbmpCount( _shr_pbmp const & pbmp ) const override {
      U32 count = 0;
      for ( U32 const word : pbmp.words ) {
         count += static_cast< U32 >( std::popcount( word ) );
      }
      return count;
   }

 private:
   template< typename... Values > S32 called( std::string call, Values... values ) {
      U8 readBack = 100;
      ( note( call, readBack, values ), ... );
      calls.push_back( call );
      return onCall();
   }
   template< typename T > static void note( std::string & call, U8 & readBack, T value ) {
      if constexpr ( std::is_pointer_v< T > ) {
         *value = static_cast< std::remove_pointer_t< T > >( ++readBack );
      } else {
         call += ' ' + std::to_string( value );
      }
   }
};
