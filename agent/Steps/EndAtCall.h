#pragma once

#include <string>
#include <vector>

#include <Quelm/Integers.h>
#include <Steps/Step.h>

namespace Steps {

// Ends the process by SIGKILL in place of a call of the chip, of one operation
// (Chip::kFallibleOperations) or of any: the one with number `number` from now on.
class EndAtCall final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void queue( Context const & context, int line ) const override;

   std::string operation;  // empty: any
   U32 number = 1;
};

}  // namespace Steps
