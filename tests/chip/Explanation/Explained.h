// leaf1 and its explanations.
#pragma once

#include <Explanation/Explanation.h>

#include "../Pipeline/Leaf.h"

namespace PipelineTest {

using Chip::CopyExplanation;
using Chip::Explanation;
using Chip::NoCopy;
using Chip::NoCopyReason;

inline Explanation explained( Leaf const & leaf1, VornalPort port, FrameFields const & frame ) {
   return explain( leaf1.pipeline, port, bytesOf( frame ) );
}
// At the port where such a frame would come in: underlay, or port 1.
inline Explanation explained( Leaf const & leaf1, FrameFields const & frame ) {
   return explained( leaf1, frame.outer ? kUnderlay : kPort1, frame );
}

inline CopyExplanation copyOn( Explanation const & why, std::string_view interface ) {
   for ( CopyExplanation const & copy : why.copies ) {
      if ( copy.story.intfId == intf( interface ) ) {
         return copy;
      }
   }
   ADD_FAILURE() << "no copy on " << interface;
   return {};
}

inline std::optional< NoCopy > noCopyOn( Explanation const & why, std::string_view interface ) {
   for ( NoCopy const & one : why.noCopies ) {
      if ( one.intfId == intf( interface ) ) {
         return one;
      }
   }
   return std::nullopt;
}

}  // namespace PipelineTest
