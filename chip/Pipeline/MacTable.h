// The places of MAC addresses, which a bridge learns from the source addresses of the frames it
// sees (IEEE 802.1Q, section 8.7).
//
// An address belongs to one VLAN and is in one place, an interface or behind a tunnel: seen
// elsewhere, it has moved. An address that is known on an Ethernet segment of this switch has not
// moved when it is seen through another VTEP of that segment: both are on the segment (RFC
// 7432, section 15). Addresses do not age. The table has a limit, so that no sender of
// made-up addresses can fill the memory; beyond it nothing new is learned, and known addresses
// still move.
#pragma once

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

   std::size_t size() const { return places_.size(); }

   // The address has been seen at that place of the tables. Group addresses and the address of all
   // zeros are not learned.
   void learn( Vlan vlan, MacAddress address, Place place, Tables const & tables );
   // The place, or nullptr; valid until the next learn().
   Place const * find( Vlan vlan, MacAddress address ) const {
      return valueIn( places_, keyOf( vlan, address ) );
   }

   // The addresses whose places exist in the other tables too: the interface is still in the VLAN,
   // or the tunnel is still there and the VLAN still has a VNI.
   MacTable movedTo( Tables const & before, Tables const & after ) const;

 private:
   static constexpr int kVlanShift = 48;

   static U64 keyOf( Vlan vlan, MacAddress address ) {
      return U64{ vlan } << kVlanShift | address.value();
   }

   HashMap< U64, Place > places_;
};

}  // namespace Chip
