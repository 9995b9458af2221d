// The places of MAC addresses, which a bridge learns from the source addresses of the frames it
// sees (IEEE 802.1Q, section 8.7).
//
// An address belongs to one VLAN and is in one place, an interface or behind a tunnel: seen
// elsewhere, it has moved. An address that is known on an Ethernet segment of this switch has not
// moved when it is seen through another VTEP of that segment: both are on the segment (RFC
// 7432, section 15). Addresses do not age. The table has a limit, so that no sender of
// made-up addresses can fill the memory; beyond it nothing new is learned, and known addresses
// still move.
//
// An entry keeps the number of the frame by which it was learned or last moved.
#pragma once

#include <Pipeline/LearnedMac.h>
#include <Pipeline/Tables.h>

namespace Chip {

// An interface or a tunnel, by its index in the tables.
struct Place {
   bool isTunnel = false;
   Index index = kNone;

   friend bool operator==( Place const &, Place const & ) = default;
};

class MacTable {
 public:
   static constexpr std::size_t kLimit = 32768;

   std::size_t size() const { return entries_.size(); }

   // That frame has come from the address, at that place of the tables. Group addresses and the
   // address of all zeros are not learned.
   Learning learn( Vlan vlan, MacAddress address, Place place, Tables const & tables, U64 frame );
   // The place, or nullptr; valid until the next learn().
   Place const * find( Vlan vlan, MacAddress address ) const {
      Entry const * const entry = valueIn( entries_, keyOf( vlan, address ) );
      return entry ? &entry->place : nullptr;
   }

   // The entry in the names of the tables.
   std::optional< LearnedMac > entry( Vlan vlan, MacAddress address, Tables const & tables ) const;
   // All entries, by VLAN and address.
   std::vector< LearnedMac > entries( Tables const & tables ) const;

   // The addresses whose places exist in the other tables too: the interface is still in the VLAN,
   // or the tunnel is still there and the VLAN still has a VNI.
   MacTable movedTo( Tables const & before, Tables const & after ) const;

 private:
   struct Entry {
      Place place{};
      U64 frame = 0;
   };

   static constexpr int kVlanShift = 48;

   static U64 keyOf( Vlan vlan, MacAddress address ) {
      return U64{ vlan } << kVlanShift | address.value();
   }

   static LearnedMac named( U64 key, Entry const & entry, Tables const & tables );

   HashMap< U64, Entry > entries_;
};

}  // namespace Chip
