#pragma once

#include <string>
#include <vector>

#include <Scenario/Scenario.h>
#include <Steps/Step.h>

namespace Steps {

// New entities replace others, each in one change.
class Replace final : public TurnPart {
 public:
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void follow( Scenario::Course & course ) const override;
   // One turn for each entity.
   void queue( Context const & context, int line ) const override;
   void change( Context const & context, int line ) const override;

   std::vector< Scenario::Replacement > replacements;
};

}  // namespace Steps
