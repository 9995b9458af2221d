#include <Questions/Explanation.h>

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Questions/ExplanationParts.h>

namespace Questions {

namespace {

using Chip::Verdict;
using Story::Node;

// Where a copy goes to: "Ethernet1", "VTEP 10.0.0.3".
std::string goalOf( Chip::Copy const & copy ) {
   return copy.remoteVtep ? "VTEP " + copy.remoteVtep->stringValue() : copy.intfId.stringValue();
}

// What becomes of the copies of a frame, by the places that they go to.
struct Fate {
   std::vector< std::string > sent;
   std::vector< std::string > keptBack;
   std::vector< std::string > twice;
   std::vector< std::string > keptBackBy;  // with the rule
   bool isDeliveredElsewhere = false;      // a rule keeps back what the sender delivers itself
};

Fate fateOf( Chip::Explanation const & why, Grounds const & grounds ) {
   Fate fate;
   for ( Chip::Copy const & copy : why.story.copies ) {
      std::string const goal = goalOf( copy );
      if ( copy.verdict == Verdict::Sent ) {
         fate.sent.push_back( goal );
      } else if ( copy.rule || copy.verdict == Verdict::NotDesignated ) {
         fate.keptBack.push_back( goal );
         fate.keptBackBy.push_back( goal + ( copy.rule
                                                ? " by " + Grounds::placeOf( *copy.rule )
                                                : ", which is not the designated forwarder" ) );
         bool const isShared =
            why.story.tunnel && isSharedWith( grounds, copy.intfId, why.story.tunnel->source );
         fate.isDeliveredElsewhere = fate.isDeliveredElsewhere || ( copy.rule && isShared );
      }
      if ( arrivesTwice( why, copy, grounds ) ) {
         fate.twice.push_back( goal );
      }
   }
   return fate;
}

std::string fateText( Fate const & fate, Chip::Explanation const & why, Grounds const & grounds ) {
   std::string text = fate.sent.empty()
                         ? "leaves nowhere"
                         : fmt::format( "is sent to {}", fmt::join( fate.sent, ", " ) );
   if ( !fate.keptBack.empty() ) {
      text += fmt::format( "; kept back from {}", fmt::join( fate.keptBackBy, ", " ) );
   }
   if ( fate.isDeliveredElsewhere ) {
      text += fmt::format( ", where VTEP {} delivers it itself",
                           why.story.tunnel->source.stringValue() );
   }
   if ( !fate.twice.empty() ) {
      auto const & vtep = why.story.tunnel->source;
      text += fmt::format( "; it arrives twice at {}, where VTEP {} delivers it as well: {}",
                           fmt::join( fate.twice, ", " ), vtep.stringValue(),
                           whyItPasses( grounds, vtep ) );
   }
   return text;
}

Node verdictOf( Chip::Explanation const & why, Grounds const & grounds ) {
   Chip::FrameStory const & story = why.story;
   std::string const from = story.tunnel ? "VTEP " + story.tunnel->source.stringValue()
                                         : story.arrivalIntfId.stringValue();
   std::string kind = story.kind ? std::string( nameOf( *story.kind ) ) + " frame" : "frame";
   std::replace( kind.begin(), kind.end(), '-', ' ' );
   Fate const fate = fateOf( why, grounds );
   std::string const text = story.dropReason ? "is dropped as " + dropText( *story.dropReason )
                                             : fateText( fate, why, grounds );
   return {
      "verdict",
      fmt::format( "verdict: the {} from {} {}", kind, from, text ),
      { { "sentTo", fate.sent }, { "keptBackFrom", fate.keptBack }, { "twice", fate.twice } }
   };
}

}  // namespace

Node explanationOf( Grounds const & grounds, Chip::Explanation const & why ) {
   Node frame{ "frame",
               fmt::format( "frame {}: {} bytes on {} ({})", why.number, why.story.length,
                            why.story.arrivalIntfId.stringValue(),
                            portText( why.story.arrivalPort ) ),
               { { "number", why.number },
                 { "bytes", U64{ why.story.length } },
                 { "interface", why.story.arrivalIntfId.stringValue() } } };
   addHeaders( why.headers, frame );
   addDecision( why, grounds, frame );
   addIngress( why, grounds, frame );
   addCopies( why, grounds, frame );
   frame.add( verdictOf( why, grounds ) );
   return frame;
}

}  // namespace Questions
