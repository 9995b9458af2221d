// A shim that tells an observer of every field call, with the call's text when it is a guarded one.
#pragma once

#include <Calls/HardwareCall.h>
#include <Decorators/SdkDecorator.h>

namespace Chip {

class RecordingSdk final : public SdkDecorator {
 public:
   // Neither is owned, and both outlive the recorder.
   RecordingSdk( Shim::Sdk & next, CallObserver & observer )
         : SdkDecorator( next ), observer_( observer ) {}

   S32 make( Shim::Call & call ) override;

 private:
   CallObserver & observer_;
};

}  // namespace Chip
