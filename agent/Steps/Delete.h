#pragma once

#include <string>
#include <vector>

#include <Scenario/AttributeAt.h>
#include <Steps/Step.h>

namespace Steps {

// Removes a key, or empties a reference.
class Delete final : public TurnPart {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void follow( Scenario::Course & course ) const override;
   void change( Context const & context, int line ) const override;

   Scenario::AttributeAt at;
};

}  // namespace Steps
