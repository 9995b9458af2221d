#include <Reporters/FrameReporter.h>

#include <Capture/CaptureReader.h>

namespace Reporters {

namespace {

std::optional< Story::RuleKey > keyOf( std::optional< Chip::RuleKey > const & rule ) {
   return rule ? std::optional( Story::RuleKey{ rule->unit, rule->group, rule->id } )
               : std::nullopt;
}

Story::FrameTunnel tunnelOf( Chip::TunnelStory const & tunnel ) {
   return { tunnel.source.stringValue(), tunnel.destination.stringValue(), tunnel.vni };
}

Story::FrameInner innerOf( Chip::InnerStory const & inner ) {
   Story::FrameInner told{ inner.source.stringValue(),
                           inner.destination.stringValue(),
                           inner.vlan,
                           inner.etherType,
                           {},
                           {} };
   if ( inner.ip ) {
      told.sourceIp = inner.ip->source.stringValue();
      told.destinationIp = inner.ip->destination.stringValue();
   }
   return told;
}

Story::FrameCopy copyOf( Chip::Copy const & copy ) {
   Story::FrameCopy told{
      copy.intfId.stringValue(), {}, {}, {}, std::string( nameOf( copy.verdict ) ),
      keyOf( copy.rule )
   };
   if ( copy.port.isValid() && copy.verdict != Chip::Verdict::NoPort ) {
      told.unit = copy.port.unit();
      told.port = copy.port.logicalPort();
   }
   if ( copy.remoteVtep ) {
      told.vtep = copy.remoteVtep->stringValue();
   }
   return told;
}

}  // namespace

Story::FrameForwarded frameOf( Chip::FrameStory const & story, U64 number ) {
   Story::FrameForwarded told;
   told.number = number;
   told.arrival = story.arrivalIntfId.stringValue();
   told.length = story.length;
   if ( story.tunnel ) {
      told.tunnel = tunnelOf( *story.tunnel );
   }
   if ( story.inner ) {
      told.inner = innerOf( *story.inner );
   }
   if ( story.kind ) {
      told.kind = nameOf( *story.kind );
   }
   if ( story.dropReason ) {
      told.dropReason = nameOf( *story.dropReason );
   }
   for ( Chip::IngressStory const & ingress : story.ingress ) {
      told.ingress.push_back( { ingress.unit, keyOf( ingress.rule ), ingress.classId } );
   }
   for ( Chip::Copy const & copy : story.copies ) {
      told.copies.push_back( copyOf( copy ) );
   }
   return told;
}

U64 framesIn( std::filesystem::path const & capture ) {
   Chip::CaptureReader reader( capture );
   U64 frames = 0;
   while ( reader.next() ) {
      ++frames;
   }
   return frames;
}

}  // namespace Reporters
