#pragma once

#include <map>
#include <string>

#include <Pelk/IntfId.h>
#include <Steps/Step.h>

namespace Steps {

// Sets whether interfaces forward frames that came through a tunnel for several receivers.
class DesignatedForwarder final : public Step {
 public:
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   Scenario::AfterRestart afterRestart() const override { return Scenario::AfterRestart::lasts; }
   bool isAboutFrames() const override { return true; }
   void queue( Context const & context, int line ) const override;

   std::map< Pelk::IntfId, bool > isDesignated;
};

}  // namespace Steps
