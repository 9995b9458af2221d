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

// Whether one place is a segment of this switch, and the other a VTEP that is on it as well.
bool isOneSegment( Place known, Place seen, Tables const & tables ) {
   if ( known.isTunnel || !seen.isTunnel ) {
      return false;
   }
   std::vector< Index > const & shared = tables.tunnels[ seen.index ].shared;
   return std::find( shared.begin(), shared.end(), known.index ) != shared.end();
}

}  // namespace

void MacTable::learn( Vlan vlan, MacAddress address, Place place, Tables const & tables ) {
   if ( address.isGroup() || address == MacAddress() ) {
      return;
   }
   U64 const key = keyOf( vlan, address );
   Place const * const known = valueIn( places_, key );
   bool const isNews =
      known ? *known != place && !isOneSegment( *known, place, tables ) : size() < kLimit;
   if ( isNews ) {
      places_[ key ] = place;
   }
}

MacTable MacTable::movedTo( Tables const & before, Tables const & after ) const {
   MacTable result;
   for ( auto const & [ key, place ] : places_ ) {
      Index const domain = after.domainOf( static_cast< Vlan >( key >> kVlanShift ) );
      if ( domain == kNone ) {
         continue;
      }
      BridgeDomain const & there = after.domains[ domain ];
      Place const moved =
         place.isTunnel ? placeOfTunnel( before.tunnels[ place.index ], there, after )
                        : placeOfInterface( before.interfaces[ place.index ].intfId, there, after );
      if ( moved.index != kNone ) {
         result.places_[ key ] = moved;
      }
   }
   return result;
}

}  // namespace Chip
