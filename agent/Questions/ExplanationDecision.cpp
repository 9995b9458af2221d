#include <Questions/ExplanationParts.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

namespace Questions {

namespace {

using Story::Cell;
using Story::Node;

std::string learningText( Chip::Learning learning ) {
   switch ( learning ) {
   case Chip::Learning::New: return "this frame teaches it";
   case Chip::Learning::Moved: return "this frame moves it";
   case Chip::Learning::Unchanged: return "it is known there";
   case Chip::Learning::SharedSegment:
      return "it stays on the segment that this switch shares with the VTEP";
   case Chip::Learning::NotLearnable: return "a group address, or all zeros; nothing is learned";
   case Chip::Learning::TableFull: break;
   }
   return "the MAC table is full; nothing is learned";
}

std::string entryText( std::optional< Chip::LearnedMac > const & entry, Grounds const & grounds ) {
   return entry ? placeText( entry->place ) + ", " + grounds.learnedText( entry->frame )
                : "not in the MAC table";
}

// The values of an entry of the MAC table.
std::vector< Story::NamedCell > entryValues( std::optional< Chip::LearnedMac > const & entry,
                                             Grounds const & grounds ) {
   return { { "place", entry ? Cell( placeText( entry->place ) ) : Cell() },
            { "frame", entry ? Cell( entry->frame ) : Cell() },
            { "step", entry ? grounds.stepOf( entry->frame ) : Cell() } };
}

void addTunnel( Chip::TunnelStory const & tunnel, Node & frame ) {
   std::string text = fmt::format( "tunnel: from VTEP {} to {}", tunnel.source.stringValue(),
                                   tunnel.destination.stringValue() );
   text += tunnel.vni ? fmt::format( ", VNI {}", *tunnel.vni ) : "";
   text += tunnel.sourceGport ? fmt::format( ", source gport {:#x}", *tunnel.sourceGport ) : "";
   frame.add(
      { "tunnel",
        text,
        { { "source", tunnel.source.stringValue() },
          { "destination", tunnel.destination.stringValue() },
          { "vni", tunnel.vni ? Cell( U64{ *tunnel.vni } ) : Cell() },
          { "sourceGport", tunnel.sourceGport ? Cell( U64{ *tunnel.sourceGport } ) : Cell() } } } );
}

void addDomain( std::optional< Chip::DomainFields > const & domain, Node & decision ) {
   if ( !domain ) {
      return;
   }
   decision.add( { "bridge-domain",
                   domain->vni == 0
                      ? fmt::format( "bridge domain: VLAN {}, without a VNI", domain->vlan )
                      : fmt::format( "bridge domain: VLAN {}, VNI {}", domain->vlan, domain->vni ),
                   { { "vlan", U64{ domain->vlan } }, { "vni", U64{ domain->vni } } } } );
}

void addSource( Chip::SourceExplanation const & source, Grounds const & grounds, Node & decision ) {
   Node & node = decision.add(
      { "source",
        fmt::format( "source {} in VLAN {}, seen at {}: {}", source.address.stringValue(),
                     source.vlan, placeText( source.seen ), learningText( source.learning ) ),
        { { "address", source.address.stringValue() },
          { "vlan", U64{ source.vlan } },
          { "seenAt", placeText( source.seen ) } } } );
   node.add( { "mac-entry", "before this frame: " + entryText( source.known, grounds ),
               entryValues( source.known, grounds ) } );
}

void addRoutes( Chip::Explanation const & why, Node & decision ) {
   if ( why.hostRoute ) {
      auto const & [ host, route ] = *why.hostRoute;
      decision.add( { "host-route",
                      fmt::format( "host route: {} is in VLAN {} at {}", host.stringValue(),
                                   route.vlan, route.mac.stringValue() ),
                      { { "host", host.stringValue() },
                        { "vlan", U64{ route.vlan } },
                        { "mac", route.mac.stringValue() } } } );
   }
   if ( why.multicastRoute ) {
      auto const & [ group, vlans ] = *why.multicastRoute;
      decision.add( { "multicast-route",
                      vlans.empty()
                         ? fmt::format( "multicast route: {} in all VLANs", group.stringValue() )
                         : fmt::format( "multicast route: {} in VLANs {}", group.stringValue(),
                                        fmt::join( vlans, ", " ) ),
                      { { "group", group.stringValue() } } } );
   }
}

}  // namespace

std::string portText( VornalTypes::VornalPort const & port ) {
   return fmt::format( "unit {} port {}", port.unit(), port.logicalPort() );
}

std::string placeText( Chip::MacPlace const & place ) {
   return place.remoteVtep ? "VTEP " + place.remoteVtep->stringValue() : place.intfId.stringValue();
}

void addDecision( Chip::Explanation const & why, Grounds const & grounds, Node & frame ) {
   if ( why.story.tunnel ) {
      addTunnel( *why.story.tunnel, frame );
   }
   auto const & reason = why.story.dropReason;
   std::string const kind = why.story.kind ? std::string( nameOf( *why.story.kind ) ) : "";
   std::string const drop = reason ? "dropped as " + dropText( *reason ) : "";
   Node & decision = frame.add(
      { "decision",
        "decision: " + kind + ( kind.empty() || !reason ? "" : ", " ) + drop,
        { { "kind", kind.empty() ? Cell() : Cell( kind ) },
          { "dropReason", reason ? Cell( std::string( nameOf( *reason ) ) ) : Cell() } } } );
   addDomain( why.domain ? why.domain : why.arrivalDomain, decision );
   if ( why.source ) {
      addSource( *why.source, grounds, decision );
   }
   addRoutes( why, decision );
   if ( why.destination ) {
      Node & node = decision.add(
         { "destination",
           fmt::format( "destination {} in VLAN {}: {}", why.destination->address.stringValue(),
                        why.destination->vlan, entryText( why.destination->found, grounds ) ),
           { { "address", why.destination->address.stringValue() },
             { "vlan", U64{ why.destination->vlan } } } } );
      auto const entry = entryValues( why.destination->found, grounds );
      node.values.insert( node.values.end(), entry.begin(), entry.end() );
   }
}

void addIngress( Chip::Explanation const & why, Grounds const & grounds, Node & frame ) {
   for ( Chip::IngressExplanation const & met : why.ingress ) {
      Node & lookup =
         frame.add( grounds.lookup( fmt::format( "ingress rules of unit {}", met.story.unit ),
                                    Chip::GroupKind::Ingress, Chip::keyFieldsOf( met.fields ),
                                    met.comparison ) );
      lookup.values.push_back( { "unit", U64{ met.story.unit } } );
      if ( met.story.classId != 0 ) {
         lookup.add( { "class-id",
                       fmt::format( "the frame goes on with class id {}", met.story.classId ),
                       { { "classId", U64{ met.story.classId } } } } );
      }
   }
}

}  // namespace Questions
