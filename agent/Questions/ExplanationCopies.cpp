#include <Questions/ExplanationParts.h>

#include <algorithm>
#include <set>

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

// The interface at the copy's port, which may be a member of the copy's port channel.
std::string memberOf( Chip::Copy const & copy, Grounds const & grounds ) {
   return copy.port.isValid() ? grounds.interfaceAt( copy.port ) : "";
}

std::string copyText( Chip::Copy const & copy, Grounds const & grounds ) {
   std::string text = copy.intfId.stringValue();
   std::string const member = memberOf( copy, grounds );
   bool const isMember = !member.empty() && !text.empty() && member != text;
   text += isMember ? " by " + member : "";
   if ( copy.remoteVtep ) {
      text += ( text.empty() ? "VTEP " : " to VTEP " ) + copy.remoteVtep->stringValue();
   }
   if ( copy.verdict != Verdict::NoPort ) {
      text += " (" + portText( copy.port ) + ")";
   }
   return text + ": " + verdictText( copy.verdict );
}

// Whether a rule exempts the frame from those that keep it back at that copy's unit.
bool isExempt( Chip::Explanation const & why, Chip::Copy const & copy, Grounds const & grounds ) {
   return std::any_of( why.ingress.begin(), why.ingress.end(), [ & ]( auto const & met ) {
      return met.story.unit == copy.port.unit() && grounds.isExempt( met.comparison );
   } );
}

// Why local bias lets a copy pass that is sent; nothing where nobody would expect it to be kept
// back.
std::optional< std::string > whyUnfiltered( Chip::Explanation const & why, Chip::Copy const & copy,
                                            Grounds const & grounds ) {
   if ( copy.verdict != Verdict::Sent || copy.remoteVtep ) {
      return std::nullopt;
   }
   std::string const intf = copy.intfId.stringValue();
   auto const segment = grounds.state().segments.find( copy.intfId );
   bool const isOnSegment = segment != grounds.state().segments.end();
   if ( !why.story.tunnel ) {
      bool const isShared = isOnSegment && !segment->second.empty();
      return isShared ? std::optional( "local bias keeps back only frames from VTEPs" )
                      : std::nullopt;
   }
   IpGenAddr const vtep = why.story.tunnel->source;
   if ( !isOnSegment ) {
      return intf + " is on no Ethernet segment";
   }
   if ( !isSharedWith( grounds, copy.intfId, vtep ) ) {
      return fmt::format( "the segment of {} is not shared with VTEP {}", intf,
                          vtep.stringValue() );
   }
   if ( !isForSeveral( *why.story.kind ) ) {
      return "local bias keeps back only frames for several receivers";
   }
   return isExempt( why, copy, grounds ) ? "the winning ingress rule exempts it from local bias"
                                         : whyItPasses( grounds, vtep );
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
        copyText( story, grounds ),
        { { "interface", story.intfId.stringValue() },
          { "member", memberOf( story, grounds ) },
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
   if ( auto const reason = whyUnfiltered( why, story, grounds ) ) {
      node.add( { "unfiltered", "not filtered: " + *reason, { { "reason", *reason } } } );
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

void addNoCopy( std::string const & interface, std::string const & portChannel,
                std::string const & reason, Node & noCopies ) {
   noCopies.add( { "no-copy",
                   interface + ( portChannel.empty() ? "" : " of " + portChannel ) + ": " + reason,
                   { { "interface", interface },
                     { "portChannel", portChannel.empty() ? Cell() : Cell( portChannel ) },
                     { "reason", reason } } } );
}

// The interfaces of the switch: those that are published, and those that are to carry traffic.
std::set< IntfId > interfacesOf( Grounds const & grounds ) {
   std::set< IntfId > all = grounds.configured();
   for ( auto const & [ intf, port ] : grounds.state().ports ) {
      all.insert( intf );
   }
   for ( auto const & [ portChannel, members ] : grounds.state().lags ) {
      all.insert( portChannel );
      all.insert( members.begin(), members.end() );
   }
   for ( auto const & [ intf, vteps ] : grounds.state().segments ) {
      all.insert( intf );
   }
   return all;
}

// The chip knows only the interfaces that have a port, and the port channels that carry anything.
void addUnknownToChip( Chip::Explanation const & why, Grounds const & grounds, Node & noCopies ) {
   std::set< IntfId > rest = interfacesOf( grounds );
   for ( Chip::Copy const & copy : why.story.copies ) {
      rest.erase( copy.intfId );
      std::erase_if( rest, [ & ]( IntfId const & intf ) {
         auto const port = grounds.state().ports.find( intf );
         return port != grounds.state().ports.end() && port->second == copy.port;
      } );
   }
   for ( Chip::NoCopy const & none : why.noCopies ) {
      rest.erase( none.intfId );
   }
   for ( IntfId const & intf : rest ) {
      addNoCopy( intf.stringValue(), "",
                 isPortChannel( intf ) ? "it carries no VLAN"
                                       : "it has no port on a chip of this switch",
                 noCopies );
   }
}

void addNoCopies( Chip::Explanation const & why, Grounds const & grounds, Node & frame ) {
   Node node{ "no-copies", "interfaces without a copy" };
   for ( Chip::NoCopy const & none : why.noCopies ) {
      addNoCopy( none.intfId.stringValue(), none.portChannel.stringValue(), noCopyText( none ),
                 node );
   }
   addUnknownToChip( why, grounds, node );
   if ( !node.children.empty() ) {
      frame.add( std::move( node ) );
   }
}

}  // namespace

bool isSharedWith( Grounds const & grounds, IntfId const & intf, IpGenAddr const & vtep ) {
   auto const segment = grounds.state().segments.find( intf );
   return segment != grounds.state().segments.end() && segment->second.contains( vtep );
}

bool arrivesTwice( Chip::Explanation const & why, Chip::Copy const & copy,
                   Grounds const & grounds ) {
   return copy.verdict == Verdict::Sent && !copy.remoteVtep && why.story.tunnel &&
          isForSeveral( *why.story.kind ) &&
          isSharedWith( grounds, copy.intfId, why.story.tunnel->source ) &&
          !isExempt( why, copy, grounds );
}

std::string whyItPasses( Grounds const & grounds, IpGenAddr const & vtep ) {
   if ( !grounds.state().isPluginReady ) {
      return "the plug-in is not ready, so there are no rules yet";
   }
   auto const lack = grounds.unprotected().find( vtep );
   return lack == grounds.unprotected().end()
             ? "no rule of the chip keeps it back; 'vornal verify' compares the rules with the "
               "state"
             : fmt::format( "VTEP {} lacks a rule: {}", vtep.stringValue(), lack->second );
}

void addCopies( Chip::Explanation const & why, Grounds const & grounds, Node & frame ) {
   if ( !why.copies.empty() ) {
      Node & node = frame.add( { "copies", "copies" } );
      for ( Chip::CopyExplanation const & copy : why.copies ) {
         addCopy( why, copy, grounds, node );
      }
   }
   // A frame that was dropped has a reason of its own.
   if ( !why.story.dropReason ) {
      addNoCopies( why, grounds, frame );
   }
}

}  // namespace Questions
