#pragma once

#include <optional>
#include <string>

#include <StateDatabase/EntityPath.h>
#include <Steps/Step.h>

namespace Steps {

// Shows an entity, or all rules.
class Dump final : public Step {
 public:
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   void queue( Context const & context, int line ) const override;

   std::optional< StateDatabase::EntityPath > entity;  // nothing: the rules
};

}  // namespace Steps
