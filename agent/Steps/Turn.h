#pragma once

#include <memory>
#include <string>
#include <vector>

#include <Steps/Step.h>

namespace Steps {

// Makes several changes in one turn, one after the other.
class Turn final : public Step {
 public:
   struct PlacedPart {
      std::shared_ptr< TurnPart const > part;
      int line = 0;
   };

   static std::vector< WordList > vocabulary();
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   // A turn lasts as a whole, unless all of it is repeated.
   Scenario::AfterRestart afterRestart() const override;
   void follow( Scenario::Course & course ) const override;
   void queue( Context const & context, int line ) const override;

   std::vector< PlacedPart > parts;
};

}  // namespace Steps
