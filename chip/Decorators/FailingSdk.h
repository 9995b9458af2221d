// A shim that lets one field call fail: it is not made, and its result is the code given.
#pragma once

#include <string>

#include <Decorators/SdkDecorator.h>
#include <Quelm/Assert.h>

namespace Chip {

struct Fault {
   U64 nth;   // which of the calls, from 1
   S32 code;  // negative for a failure, positive for a success of a call that did nothing; not 0
   std::string operation{};  // counts and fails calls of this operation only; empty for any
};

class FailingSdk final : public SdkDecorator {
 public:
   FailingSdk( Shim::Sdk & next, Fault fault )
         : SdkDecorator( next ), fault_( std::move( fault ) ) {
      QUELM_ASSERT( fault_.nth > 0 && fault_.code != 0 );
   }

 private:
   std::optional< S32 > resultInsteadOf( std::string_view operation ) override {
      if ( !fault_.operation.empty() && fault_.operation != operation ) {
         return std::nullopt;
      }
      return ++calls_ == fault_.nth ? std::optional( fault_.code ) : std::nullopt;
   }

   Fault fault_;
   U64 calls_ = 0;  // of those that the fault is about
};

}  // namespace Chip
