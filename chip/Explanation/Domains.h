// The bridge domains of a rehearsed frame.
#pragma once

#include <Pipeline/Rehearsal.h>

namespace Chip {

inline BridgeDomain const * domainOf( Tables const & tables, Vlan vlan ) {
   Index const index = tables.domainOf( vlan );
   return index == kNone ? nullptr : &tables.domains[ index ];
}

// Of the VLAN in which the frame came; nullptr when there is none.
inline BridgeDomain const * arrivalDomainOf( Rehearsal const & rehearsal ) {
   auto const & inner = rehearsal.story.inner;
   return inner ? domainOf( *rehearsal.tables, inner->vlan ) : nullptr;
}

// In which it is forwarded, a route's where one was found; nullptr when it was dropped before.
inline BridgeDomain const * forwardingDomainOf( Rehearsal const & rehearsal ) {
   if ( !rehearsal.story.kind ) {
      return nullptr;
   }
   return rehearsal.destination ? domainOf( *rehearsal.tables, rehearsal.destination->vlan )
                                : arrivalDomainOf( rehearsal );
}

}  // namespace Chip
