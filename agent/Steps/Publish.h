#pragma once

#include <string>
#include <vector>

#include <Scenario/Scenario.h>
#include <Steps/Step.h>

namespace Steps {

// Other agents publish.
class Publish final : public TurnPart {
 public:
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void follow( Scenario::Course & course ) const override;
   void queue( Context const & context, int line ) const override;
   void change( Context const & context, int line ) const override;

   std::vector< Scenario::Change > changes;
};

// One turn for each change.
void queuePublished( Context const & context, std::vector< Scenario::Change > const & changes );

}  // namespace Steps
