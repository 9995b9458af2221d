// Counts the frames of one step by source and kind, and by their outcomes at each place.
//
//    from       kind              frames  outcomes
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

   // The lines of the table, with its heading.
   std::vector< std::string > lines() const;

 private:
   struct Row {
      U64 frames = 0;
      // The number of frames by place and outcome.
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
