// Tells programs a run while it happens: each event is a line, a JSON object with the event's name
// under "event" and its fields in the forms of the JSON document (Story/JsonForms.h).
// docs/program.md lists the events.
#pragma once

#include <ostream>

#include <Story/Observer.h>

namespace Story {

class EventLines final : public Observer {
 public:
   // The stream must outlive it. It is flushed with each step, and whenever no event comes.
   explicit EventLines( std::ostream & out ) : out_( out ) {}

   void onEvent( Event const & event ) override;
   void onPause() override { out_.flush(); }

 private:
   std::ostream & out_;
};

}  // namespace Story
