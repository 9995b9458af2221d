// The growing JSON document of a run. Events add themselves to it; JsonWriter.h describes its form.
#pragma once

#include <nlohmann/json.hpp>

#include <Story/RunEvents.h>
#include <Story/Spool.h>

namespace Story {

using Json = nlohmann::ordered_json;

class Document {
 public:
   enum class Frames { Kept, LeftOut };

   Document( std::size_t mostEntries, Frames frames );

   Json const & json() const { return json_; }

   Json & operator[]( char const * name ) { return json_[ name ]; }
   Json & plugin() { return json_[ "plugin" ]; }

   void stepNew( StepBegins const & step );
   bool hasStep() const { return !json_[ "steps" ].empty(); }
   // The step under way is the last one.
   Json & step() { return json_[ "steps" ].back(); }
   // Frames are many, so the list of them is kept on disk, as text, or not at all. It is empty in
   // json(). Throws InputError when the disk does not take it.
   void frameNew( Json const & frame );
   Spool const & frames() const { return frames_; }

   // The object with the number of the step in front.
   Json withStep( Json const & object );
   // The list of the step has room for one more; counts the omission if it has none.
   bool hasRoom( char const * list );

   void count( char const * counter, std::size_t by = 1 );

 private:
   std::size_t mostEntries_;
   bool keepsFrames_;
   Json json_;
   Spool frames_;
};

}  // namespace Story
