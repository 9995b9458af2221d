#pragma once

#include <string>
#include <vector>

#include <Quelm/Integers.h>
#include <Steps/Step.h>

namespace Steps {

// Lets a call of a chip's operation (Chip::kFallibleOperations) fail: the one with number `number`
// from now on is not made, and has this result code.
class FailCall final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void queue( Context const & context, int line ) const override;

   std::string operation;
   U32 number = 1;
   S32 code = 0;
};

}  // namespace Steps
