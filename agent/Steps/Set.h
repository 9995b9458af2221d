#pragma once

#include <string>
#include <vector>

#include <Scenario/AttributeAt.h>
#include <Steps/Step.h>

namespace Steps {

// Sets an attribute, or inserts into it.
class Set final : public TurnPart {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & words );
   std::string description() const override;
   void follow( Scenario::Course & course ) const override;
   void change( Context const & context, int line ) const override;

   Scenario::AttributeAt at;
   std::string value;  // empty when only a key is inserted
};

}  // namespace Steps
