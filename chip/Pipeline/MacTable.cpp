#include <Pipeline/MacTable.h>

namespace Chip {

namespace {

Place placeOfInterface( Pelk::IntfId const & intfId, BridgeDomain const & domain,
                        Tables const & tables ) {
   auto const & all = domain.interfaces;
   auto const found = std::find_if( all.begin(), all.end(), [ & ]( DomainInterface const & part ) {
      return tables.interfaces[ part.interface ].intfId == intfId;
   } );
   return { false, found == all.end() ? kNone : found->interface };
}

Place placeOfTunnel( Tunnel const & tunnel, BridgeDomain const & domain, Tables const & tables ) {
   Index const * const found = valueIn( tables.tunnelOfVtep, tunnel.remoteVtep );
   return { true, found && domain.vni != 0 ? *found : kNone };
}

MacPlace macPlaceOf( Place place, Tables const & tables ) {
   return place.isTunnel ? MacPlace{ .remoteVtep = tables.tunnels[ place.index ].remoteVtep }
                         : MacPlace{ .intfId = tables.interfaces[ place.index ].intfId };
}

// Whether one place is a segment of this switch, and the other a VTEP that is on it as well.
bool isOneSegment( Place known, Place seen, Tables const & tables ) {
   if ( known.isTunnel || !seen.isTunnel ) {
      return false;
   }
   std::vector< Index > const & shared = tables.tunnels[ seen.index ].shared;
   return std::find( shared.begin(), shared.end(), known.index ) != shared.end();
}

}  // namespace

Learning MacTable::learn( Vlan vlan, MacAddress address, Place place, Tables const & tables,
                          U64 frame ) {
   if ( address.isGroup() || address == MacAddress() ) {
      return Learning::NotLearnable;
   }
   U64 const key = keyOf( vlan, address );
   Entry const * const known = valueIn( entries_, key );
   if ( !known && size() >= kLimit ) {
      return Learning::TableFull;
   }
   if ( known && known->place == place ) {
      return Learning::Unchanged;
   }
   if ( known && isOneSegment( known->place, place, tables ) ) {
      return Learning::SharedSegment;
   }
   Learning const outcome = known ? Learning::Moved : Learning::New;
   entries_[ key ] = { place, frame };
   return outcome;
}

std::optional< LearnedMac > MacTable::entry( Vlan vlan, MacAddress address,
                                             Tables const & tables ) const {
   U64 const key = keyOf( vlan, address );
   Entry const * const found = valueIn( entries_, key );
   return found ? std::optional( named( key, *found, tables ) ) : std::nullopt;
}

std::vector< LearnedMac > MacTable::entries( Tables const & tables ) const {
   std::vector< LearnedMac > all;
   all.reserve( size() );
   for ( auto const & [ key, entry ] : entries_ ) {
      all.push_back( named( key, entry, tables ) );
   }
   std::sort( all.begin(), all.end(), []( LearnedMac const & a, LearnedMac const & b ) {
      return keyOf( a.vlan, a.address ) < keyOf( b.vlan, b.address );
   } );
   return all;
}

LearnedMac MacTable::named( U64 key, Entry const & entry, Tables const & tables ) {
   return { .vlan = static_cast< Vlan >( key >> kVlanShift ),
            .address = MacAddress( key ),
            .place = macPlaceOf( entry.place, tables ),
            .frame = entry.frame };
}

MacTable MacTable::movedTo( Tables const & before, Tables const & after ) const {
   MacTable result;
   for ( auto const & [ key, entry ] : entries_ ) {
      Place const place = entry.place;
      Index const domain = after.domainOf( static_cast< Vlan >( key >> kVlanShift ) );
      if ( domain == kNone ) {
         continue;
      }
      BridgeDomain const & there = after.domains[ domain ];
      Place const moved =
         place.isTunnel ? placeOfTunnel( before.tunnels[ place.index ], there, after )
                        : placeOfInterface( before.interfaces[ place.index ].intfId, there, after );
      if ( moved.index != kNone ) {
         result.entries_[ key ] = { moved, entry.frame };
      }
   }
   return result;
}

}  // namespace Chip
