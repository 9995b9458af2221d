#include <Questions/Explanation.h>

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

std::string keptBackBy( Chip::Copy const & copy ) {
   return copy.rule ? "by " + Grounds::placeOf( *copy.rule )
                    : "because it is not the designated forwarder";
}

std::string fateText( Chip::FrameStory const & story ) {
   std::vector< std::string > sent;
   std::vector< std::string > keptBack;
   for ( Chip::Copy const & copy : story.copies ) {
      if ( copy.verdict == Verdict::Sent ) {
         sent.push_back( goalOf( copy ) );
      } else if ( copy.rule || copy.verdict == Verdict::NotDesignated ) {
         keptBack.push_back( goalOf( copy ) + " " + keptBackBy( copy ) );
      }
   }
   std::string text =
      sent.empty() ? "it leaves nowhere" : fmt::format( "sent to {}", fmt::join( sent, ", " ) );
   if ( !keptBack.empty() ) {
      text += fmt::format( "; kept back from {}", fmt::join( keptBack, ", " ) );
   }
   return text;
}

std::string verdictOf( Chip::FrameStory const & story ) {
   std::string const from = story.tunnel ? "VTEP " + story.tunnel->source.stringValue()
                                         : story.arrivalIntfId.stringValue();
   std::string const kind = story.kind ? std::string( nameOf( *story.kind ) ) : "a frame";
   std::string const fate = story.dropReason
                               ? "dropped: " + std::string( nameOf( *story.dropReason ) )
                               : fateText( story );
   return fmt::format( "verdict: {} from {}: {}", kind, from, fate );
}

}  // namespace

Node explanationOf( Context const & context, Chip::Explanation const & why ) {
   Grounds const grounds( context );
   Node frame{ "frame",
               fmt::format( "frame {}: {} bytes on {} ({})", why.number, why.story.length,
                            why.story.arrivalIntfId.stringValue(),
                            portText( why.story.arrivalPort ) ),
               { { "number", why.number },
                 { "bytes", U64{ why.story.length } },
                 { "interface", why.story.arrivalIntfId.stringValue() } } };
   addHeaders( why.headers, frame );
   addDecision( why, frame );
   addIngress( why, grounds, frame );
   addCopies( why, grounds, frame );
   frame.add( { "verdict", verdictOf( why.story ) } );
   return frame;
}

}  // namespace Questions
