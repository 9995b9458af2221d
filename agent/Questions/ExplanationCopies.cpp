#include <Questions/ExplanationParts.h>

#include <fmt/format.h>

namespace Questions {

namespace {

using Chip::Verdict;
using Pelk::IntfId;
using Pelk::IpGenAddr;
using Story::Cell;
using Story::Node;

std::string verdictText( Verdict verdict ) {
   switch ( verdict ) {
   case Verdict::Sent: return "sent";
   case Verdict::Arrival: return "not sent: the frame came in there";
   case Verdict::NoPort: return "not sent: no port leads there";
   case Verdict::NoVtep: return "not sent: this switch has no VTEP address of that family";
   case Verdict::Masked: return "kept back by the egress mask of the ingress rule";
   case Verdict::Dropped: return "kept back by an egress rule";
   case Verdict::NotDesignated: break;
   }
   return "kept back: the interface is not the designated forwarder";
}

std::string copyText( Chip::Copy const & copy ) {
   std::string text = copy.intfId.stringValue();
   if ( copy.remoteVtep ) {
      text += ( text.empty() ? "VTEP " : " to VTEP " ) + copy.remoteVtep->stringValue();
   }
   if ( copy.verdict != Verdict::NoPort ) {
      text += " (" + portText( copy.port ) + ")";
   }
   return text + ": " + verdictText( copy.verdict );
}

// Why local bias lets the copy of a frame from that VTEP pass.
std::string whyUnfiltered( Grounds const & grounds, Chip::FrameKind kind, IntfId const & intf,
                           IpGenAddr const & vtep ) {
   auto const segment = grounds.state().segments.find( intf );
   if ( segment == grounds.state().segments.end() ) {
      return intf.stringValue() + " is on no Ethernet segment";
   }
   if ( !segment->second.contains( vtep ) ) {
      return fmt::format( "the segment of {} is not shared with VTEP {}", intf.stringValue(),
                          vtep.stringValue() );
   }
   if ( !isForSeveral( kind ) ) {
      return "local bias keeps back frames for several receivers only";
   }
   if ( !grounds.state().isPluginReady ) {
      return "the plug-in is not ready, so there are no rules yet";
   }
   auto const lack = grounds.unprotected().find( vtep );
   if ( lack != grounds.unprotected().end() ) {
      return fmt::format( "VTEP {} lacks a rule: {}", vtep.stringValue(), lack->second );
   }
   return kind == Chip::FrameKind::RoutedMulticast ? "known L3 multicast is exempt from local bias"
                                                   : "no rule of the chip keeps it back; 'vornal "
                                                     "verify' compares the rules with the state";
}

void addMask( Chip::MaskExplanation const & mask, Node & node ) {
   std::string const rule = Grounds::placeOf( mask.rule );
   node.add( { "egress-mask",
               fmt::format( "the egress mask of {} {} the port", rule,
                            mask.hasPort ? "has" : "does not have" ),
               { { "rule", rule }, { "hasPort", U64{ mask.hasPort ? 1U : 0U } } } } );
}

void addCopy( Chip::Explanation const & why, Chip::CopyExplanation const & copy,
              Grounds const & grounds, Node & copies ) {
   Chip::Copy const & story = copy.story;
   Node & node = copies.add(
      { "copy",
        copyText( story ),
        { { "interface", story.intfId.stringValue() },
          { "vtep", story.remoteVtep ? Cell( story.remoteVtep->stringValue() ) : Cell() },
          { "verdict", std::string( nameOf( story.verdict ) ) } } } );
   if ( copy.mask ) {
      addMask( *copy.mask, node );
   }
   if ( copy.egress ) {
      node.add( grounds.lookup( "egress rules", Chip::GroupKind::Egress,
                                Chip::keyFieldsOf( copy.egress->fields ),
                                copy.egress->comparison ) );
   }
   if ( copy.isDesignated ) {
      node.add( { "designation",
                  *copy.isDesignated ? "the interface is a designated forwarder"
                                     : "the interface is not the designated forwarder",
                  { { "isDesignated", U64{ *copy.isDesignated ? 1U : 0U } } } } );
   }
   if ( why.story.tunnel && story.verdict == Verdict::Sent && !story.remoteVtep ) {
      std::string const reason =
         whyUnfiltered( grounds, *why.story.kind, story.intfId, why.story.tunnel->source );
      node.add( { "unfiltered", "not filtered: " + reason, { { "reason", reason } } } );
   }
}

std::string noCopyText( Chip::NoCopy const & none ) {
   using Chip::NoCopyReason;
   std::string const instead = placeText( none.instead );
   switch ( none.reason ) {
   case NoCopyReason::FrameDropped: return "the frame was dropped";
   case NoCopyReason::OnePlace: return "the frame is for one place only: " + instead;
   case NoCopyReason::NotInVlan: return fmt::format( "it does not carry VLAN {}", none.vlan );
   case NoCopyReason::OtherMember: return "the flow takes another member, " + instead;
   case NoCopyReason::ArrivalMember: return "the frame came in by another member, " + instead;
   case NoCopyReason::FromTunnel: return "a frame from a tunnel enters no other tunnel";
   case NoCopyReason::NoVni: return fmt::format( "VLAN {} has no VNI", none.vlan );
   case NoCopyReason::EmptyFloodList: return fmt::format( "VNI {} floods to no VTEP", none.vni );
   case NoCopyReason::NoMember: return "the port channel has no member";
   case NoCopyReason::OtherUnderlay: return "the flow takes another underlay interface, " + instead;
   case NoCopyReason::NotOnTheWay: break;
   }
   return "no tunnel to a VTEP of the flood list leads over it";
}

void addNoCopies( std::vector< Chip::NoCopy > const & noCopies, Node & frame ) {
   if ( noCopies.empty() ) {
      return;
   }
   Node & node = frame.add( { "no-copies", "no copies" } );
   for ( Chip::NoCopy const & none : noCopies ) {
      std::string const name = none.intfId.stringValue();
      std::string const of =
         none.portChannel == IntfId() ? "" : " of " + none.portChannel.stringValue();
      std::string const reason = noCopyText( none );
      node.add( { "no-copy",
                  name + of + ": " + reason,
                  { { "interface", name }, { "reason", reason } } } );
   }
}

}  // namespace

void addCopies( Chip::Explanation const & why, Grounds const & grounds, Node & frame ) {
   if ( !why.copies.empty() ) {
      Node & node = frame.add( { "copies", "copies" } );
      for ( Chip::CopyExplanation const & copy : why.copies ) {
         addCopy( why, copy, grounds, node );
      }
   }
   // A frame that was dropped has a reason of its own.
   if ( !why.story.dropReason ) {
      addNoCopies( why.noCopies, frame );
   }
}

}  // namespace Questions
