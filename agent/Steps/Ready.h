#pragma once

#include <string>

#include <Steps/Step.h>

namespace Steps {

// A sub-agent's dependency point becomes ready.
class Ready final : public TurnPart {
 public:
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override { return "ready subagents::" + point; }
   Scenario::AfterRestart afterRestart() const override { return Scenario::AfterRestart::repeated; }
   void change( Context const & context, int line ) const override;

   std::string point;  // its name without the group, "l2Ready"
};

}  // namespace Steps
