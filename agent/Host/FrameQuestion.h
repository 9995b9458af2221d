// Explains the frame that `vornal explain` asks about, once in a run.
//
// A frame that the scenario sends is explained just before it goes through the switch, so by the
// state of that moment. Every other frame, and a sent one if the run ends after a named step, is
// explained when the steps are over. Explaining changes nothing.
#pragma once

#include <optional>

#include <Host/Environment.h>
#include <Traffic/FrameAsked.h>

namespace Host {

class FrameQuestion final : public Traffic::Onlooker {
 public:
   // The environment must outlive the question.
   FrameQuestion( Traffic::FrameAsked asked, bool isAfterTheSteps, Environment & environment );

   // When the steps are over. Throws Story::InputError when there is no such frame.
   void stepsAreOver();

 private:
   void look( U64 number, Traffic::ArrivingFrame const & frame ) override;
   void answer( Traffic::ArrivingFrame const & frame );

   Traffic::FrameAsked asked_;
   bool isAfterTheSteps_;
   Environment & environment_;
   std::optional< Traffic::ArrivingFrame > sent_;
   bool isAnswered_ = false;
};

}  // namespace Host
