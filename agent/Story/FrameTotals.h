// The outcomes of all frames of a run, in numbers.
#pragma once

#include <map>
#include <string>

#include <Pipeline/Story.h>

namespace Story {

struct FrameTotals {
   U64 frames = 0;
   std::map< std::string, U64 > drops;   // frames dropped as a whole, by reason
   std::map< std::string, U64 > copies;  // by verdict, without those that stay at their source

   void add( Chip::FrameStory const & frame );

   // "none dropped", or "3 dropped (2 unknown-vtep, 1 not-vxlan)".
   std::string dropsText() const;
   // "12 sent, 4 masked", or "nothing".
   std::string copiesText() const;
};

}  // namespace Story
