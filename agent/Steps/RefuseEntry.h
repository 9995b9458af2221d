#pragma once

#include <string>
#include <vector>

#include <Quelm/Integers.h>
#include <Steps/Step.h>

namespace Steps {

// Lets a request for a TCAM entry find no room: the one with number `number` from now on.
class RefuseEntry final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void queue( Context const & context, int line ) const override;

   U32 number = 1;
};

}  // namespace Steps
