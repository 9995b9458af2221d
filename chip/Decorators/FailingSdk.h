// A shim that lets field calls fail: they are not made, and their result is the code given.
#pragma once

#include <Calls/Faults.h>
#include <Decorators/SdkDecorator.h>

namespace Chip {

class FailingSdk final : public SdkDecorator {
 public:
   // Fails the calls that the faults name. Neither is owned, and both outlive it.
   FailingSdk( Shim::Sdk & next, Faults & faults ) : SdkDecorator( next ), faults_( faults ) {}

   // Fails one call.
   FailingSdk( Shim::Sdk & next, Fault fault ) : SdkDecorator( next ), faults_( own_ ) {
      own_.faultNew( std::move( fault ) );
   }

   S32 make( Shim::Call & call ) override {
      std::optional< S32 > const failure = faults_.nextResult( rowOf( call.operation ).name );
      return failure ? *failure : SdkDecorator::make( call );
   }

 private:
   Faults own_;
   Faults & faults_;
};

}  // namespace Chip
