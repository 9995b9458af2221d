#pragma once

#include <string>

#include <Steps/Step.h>

namespace Steps {

// A line of the story.
class Note final : public Step {
 public:
   static std::string shape();
   void read( Reading & reading, Value const & value );
   std::string description() const override { return text; }
   void queue( Context const &, int ) const override {}

   std::string text;
};

}  // namespace Steps
