#pragma once

#include <string>
#include <vector>

#include <Quelm/Integers.h>
#include <Steps/Step.h>

namespace Steps {

// Lets a call of the chip fail, of one operation (Chip::kFallibleOperations) or of any: the one
// with number `number` from now on is not made, and has this result code. So do all behind it, when
// it is lasting.
class FailCall final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void queue( Context const & context, int line ) const override;

   std::string operation;  // empty: any
   U32 number = 1;
   bool isLasting = false;
   S32 code = 0;
};

}  // namespace Steps
