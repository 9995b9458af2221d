// The frames of one step, counted: by where they came from and what they were, and by what became
// of them at each place.
//
//    from       kind              frames  what became of them
//    10.0.0.2   broadcast              6  Ethernet1 sent; Port-Channel2 masked by unit 0 entry 3
//    Ethernet1  known-unicast          2  10.0.0.3 sent
//    10.0.0.9   -                      1  dropped: unknown-vtep
#pragma once

#include <map>
#include <string>
#include <vector>

#include <Pipeline/Story.h>

namespace Story {

class FrameTable {
 public:
   void add( Chip::FrameStory const & frame );
   void clear() { rows_.clear(); }
   bool isEmpty() const { return rows_.empty(); }

   // The table as lines, with its heading.
   std::vector< std::string > lines() const;

 private:
   struct Row {
      U64 frames = 0;
      // By place: how often each thing became of a frame there.
      std::map< std::string, std::map< std::string, U64 > > outcomes;
   };
   struct Key {
      std::string from;
      std::string kind;

      friend bool operator==( Key const &, Key const & ) = default;
      friend std::strong_ordering operator<=>( Key const &, Key const & ) = default;
   };

   std::map< Key, Row > rows_;
};

}  // namespace Story
