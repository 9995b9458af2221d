#pragma once

#include <string>
#include <vector>

#include <StateDatabase/EntityPath.h>
#include <Steps/Step.h>

namespace Steps {

// Calls an operation of an entity.
class Call final : public TurnPart {
 public:
   static std::vector< WordList > vocabulary();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void follow( Scenario::Course & course ) const override;
   void change( Context const & context, int line ) const override;

   StateDatabase::EntityPath entity;
   std::string operation;
   std::vector< std::string > arguments;
};

}  // namespace Steps
