// The JSON document of a run as it grows. Events add themselves to it; JsonWriter.h has its form.
#pragma once

#include <nlohmann/json.hpp>

#include <Story/RunEvents.h>

namespace Story {

using Json = nlohmann::ordered_json;

class Document {
 public:
   explicit Document( std::size_t mostEntries );

   Json const & json() const { return json_; }

   Json & operator[]( char const * name ) { return json_[ name ]; }
   Json & plugin() { return json_[ "plugin" ]; }

   void stepNew( StepBegins const & step );
   bool hasStep() const { return !json_[ "steps" ].empty(); }
   // The last one, which is under way.
   Json & step() { return json_[ "steps" ].back(); }
   // The object, with the number of the step in front.
   Json withStep( Json const & object );
   // Whether one more goes into that list of the step; takes note of it when it does not.
   bool hasRoom( char const * list );

   void count( char const * counter, std::size_t by = 1 );

 private:
   std::size_t mostEntries_;
   Json json_;
};

}  // namespace Story
