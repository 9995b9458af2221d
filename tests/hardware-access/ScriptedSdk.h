// A shim whose field calls are answered by the test, and written down as they come in.
//
// A call is written down as its name and its values in decimal:
//
//    bcm_field_qualify_PacketRes 2 7 4 255
//
// Read-back leaves the values 101, 102, ... behind, in the order of its pointers, and is written
// down with the values that went in.
#pragma once

#include <bit>
#include <functional>
#include <string>
#include <vector>

#include <Shim/OneCallSdk.h>

class ScriptedSdk : public Shim::OneCallSdk {
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

   S32 make( Shim::Call & call ) override {
      std::string line( rowOf( call.operation ).name );
      line += ' ' + std::to_string( call.unit ) + ' ' + std::to_string( call.entry );
      for ( std::size_t n = 0; n < call.values.size(); ++n ) {
         line += ' ' + std::to_string( call.values[ n ] );
      }
      calls.push_back( line );
      for ( U32 readBack = 101; !call.isComplete(); ++readBack ) {
         call.values.add( readBack );
      }
      return onCall();
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
};
