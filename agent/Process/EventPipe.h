// The pipe through which a process tells its events to another.
//
// Each event travels as a frame: a marker that no text holds, the length of the event's bytes, the
// complement of that length, and the bytes (Story/Codec.h). Bytes that are no event come from a
// plug-in that writes to a descriptor that it does not own. They are handed on as lines, and
// reading goes on at the next event.
#pragma once

#include <functional>
#include <string>
#include <string_view>

#include <Process/Descriptor.h>
#include <Story/Event.h>

namespace Process {

class EventSender {
 public:
   // The pipe must outlive the sender.
   explicit EventSender( Descriptor const & pipe ) : pipe_( pipe ) {}

   // Writes the event; false when nobody reads the pipe any more.
   bool send( Story::Event const & event );

 private:
   Descriptor const & pipe_;
   std::string frame_;
};

// Needs memory for one event, and takes time in proportion to the bytes.
class EventReceiver {
 public:
   using TakeEvent = std::function< void( Story::Event const & ) >;
   using TakeLine = std::function< void( std::string const & ) >;

   // A line longer than `longestLine` bytes is handed on in pieces of that length.
   EventReceiver( Descriptor pipe, std::size_t longestLine )
         : pipe_( std::move( pipe ) ), longestLine_( longestLine ) {}

   Descriptor const & pipe() const { return pipe_; }

   // Reads the available bytes and hands on the events in them, and the lines that are none. An
   // unfinished event at the end of the pipe is lost.
   void read( TakeEvent const & takeEvent, TakeLine const & takeLine );

 private:
   std::size_t takeFront( std::string_view bytes, TakeEvent const & takeEvent,
                          TakeLine const & takeLine );
   void takeNoise( std::string_view bytes, TakeLine const & takeLine );
   void endLine( TakeLine const & takeLine );

   Descriptor pipe_;
   std::size_t longestLine_;
   std::string bytes_;  // from the beginning of an unfinished event on
   std::string line_;   // the beginning of a line that is no event
};

}  // namespace Process
