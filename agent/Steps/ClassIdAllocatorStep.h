#pragma once

#include <string>
#include <vector>

#include <Steps/Step.h>

namespace Steps {

// Pauses the allocator of class ids, which then grants nothing, or lets it serve again.
class ClassIdAllocatorStep final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   Scenario::AfterRestart afterRestart() const override { return Scenario::AfterRestart::lasts; }
   void queue( Context const & context, int line ) const override;

   bool isPaused = false;
};

}  // namespace Steps
