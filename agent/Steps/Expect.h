#pragma once

#include <string>
#include <vector>

#include <Expectations/Expected.h>
#include <Steps/Step.h>

namespace Steps {

// Checks expectations now.
class Expect final : public Step {
 public:
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override;
   bool isAboutFrames() const override;
   // One turn for each expectation.
   void queue( Context const & context, int line ) const override;

   std::vector< Expectations::Expectation > expectations;
};

}  // namespace Steps
