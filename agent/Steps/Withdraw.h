#pragma once

#include <string>
#include <vector>

#include <Scenario/Scenario.h>
#include <Steps/Step.h>

namespace Steps {

// Other agents withdraw published state.
class Withdraw final : public TurnPart {
 public:
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void follow( Scenario::Course & course ) const override;
   // One turn for each change.
   void queue( Context const & context, int line ) const override;
   void change( Context const & context, int line ) const override;

   std::vector< Scenario::Change > changes;
};

}  // namespace Steps
