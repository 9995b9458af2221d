// The end of a run.
#pragma once

#include <Story/Event.h>

namespace Record {

// The run is over with this event.
inline bool isEnd( Story::Event const & event ) {
   return std::holds_alternative< Story::RunEnds >( event ) ||
          std::holds_alternative< Story::BadInput >( event ) ||
          std::holds_alternative< Story::Stopped >( event ) ||
          std::holds_alternative< Story::Interrupted >( event );
}

}  // namespace Record
