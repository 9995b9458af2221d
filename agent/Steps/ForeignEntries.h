#pragma once

#include <optional>
#include <string>
#include <vector>

#include <Scenario/TcamGroup.h>
#include <Steps/Step.h>

namespace Steps {

// Lets other users of the group hold `count` of its entries from now on, on one unit or on each.
class ForeignEntries final : public Step {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   Scenario::AfterRestart afterRestart() const override { return Scenario::AfterRestart::lasts; }
   void queue( Context const & context, int line ) const override;

   Scenario::TcamGroup group = Scenario::TcamGroup::ingress;
   std::optional< U16 > unit;
   U32 count = 0;

 private:
   void occupy( Context const & context ) const;
};

}  // namespace Steps
