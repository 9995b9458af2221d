// A shim that lets field calls fail: they are not made, and their result is the code given.
#pragma once

#include <Calls/Faults.h>
#include <Decorators/SdkDecorator.h>

namespace Chip {

class FailingSdk final : public SdkDecorator {
 public:
   // Fails what the faults say. Neither is owned, and both outlive it.
   FailingSdk( Shim::Sdk & next, Faults & faults ) : SdkDecorator( next ), faults_( faults ) {}

   // Fails one call.
   FailingSdk( Shim::Sdk & next, Fault fault ) : SdkDecorator( next ), faults_( own_ ) {
      own_.faultNew( std::move( fault ) );
   }

 private:
   std::optional< S32 > resultInsteadOf( std::string_view operation ) override {
      return faults_.resultInsteadOf( operation );
   }

   Faults own_;
   Faults & faults_;
};

}  // namespace Chip
