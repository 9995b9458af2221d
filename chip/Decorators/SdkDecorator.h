// The base of everything that stands in front of a shim and is one itself.
//
// It hands every operation on to the next shim. A decorator overrides the operations that it
// changes: make() for field calls. Decorators can be stacked in any order, and see calls in that
// order. A recorder in front of a failing shim records the failures.
//
// The next shim is not owned and outlives the decorator. A decorator is used by one thread at a
// time, as any shim is.
#pragma once

#include <Shim/OneCallSdk.h>

namespace Chip {

class SdkDecorator : public Shim::OneCallSdk {
 public:
   explicit SdkDecorator( Shim::Sdk & next ) : next_( next ) {}
   SdkDecorator( SdkDecorator const & ) = delete;
   SdkDecorator & operator=( SdkDecorator const & ) = delete;
   ~SdkDecorator() override = default;

   S32 make( Shim::Call & call ) override { return next_.make( call ); }

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

 private:
   Shim::Sdk & next_;
};

}  // namespace Chip
