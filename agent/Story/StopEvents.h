// Collects possible causes of a stop: the variant, and the events of the step under way.
#pragma once

#include <Story/LimitIndex.h>
#include <Story/Observer.h>

namespace Story {

class StopEvents final : public Observer {
 public:
   void onEvent( Event const & event ) override;

   StopCause const & cause() const { return cause_; }

 private:
   void begin( StepBegins const & step );
   void take( PluginPass const & pass );

   StopCause cause_;
};

}  // namespace Story
