// Pelk::IntfId: an interface of the switch.
//
// Its name is the kind of interface followed by its numbers, outermost first:
//
//    Ethernet1, Ethernet3/1, Ethernet3/1/4   port, or card/port, or card/port/lane
//    Loopback0, Management1, Management1/2
//    Port-Channel7
//    Vlan100, Vxlan1
//
// The kinds and how many numbers each takes are fixed; a number is at most 65534 and has no leading
// zero. With that an identifier is one 64-bit number: copies allocate nothing, and the order is the
// natural one (Ethernet2, Ethernet3, Ethernet3/1, Ethernet10, Port-Channel1).
//
// The empty identifier, which a default-built one is, names no interface. Its text is empty, and it
// comes before all others.
//
// Failures: only reading fails, with Quelm::TextError, which quotes the text and names the mistake.
#pragma once

#include <compare>
#include <functional>
#include <string>
#include <string_view>

#include <Quelm/Integers.h>
#include <Quelm/Text.h>

namespace Pelk {

class IntfId : public Quelm::Value {
 public:
   enum class Kind : U8 { none, ethernet, loopback, management, portChannel, vlan, vxlan };

   static constexpr U32 kHighestNumber = 65534;

   constexpr IntfId() = default;

   // The interface of that name; the empty identifier for an empty name.
   static IntfId fromString( std::string_view name );

   constexpr Kind kind() const { return static_cast< Kind >( value_ >> kKindShift ); }
   constexpr bool isEmpty() const { return value_ == 0; }

   // The name, "Ethernet3/1".
   std::string stringValue() const { return Quelm::textOf( *this ); }
   // The name with the kind in two letters, "Et3/1".
   std::string shortName() const;

   friend constexpr bool operator==( IntfId const &, IntfId const & ) = default;
   friend constexpr std::strong_ordering operator<=>( IntfId const &, IntfId const & ) = default;

   static std::string_view textTypeName() { return "Pelk::IntfId"; }
   void textTo( std::string & out ) const;
   static IntfId textFrom( Quelm::TextReader & in );

 private:
   friend struct std::hash< IntfId >;

   static constexpr int kKindShift = 48;
   static constexpr int kNumberBits = 16;

   void numbersTo( std::string & out ) const;

   // The kind in bits 48 to 55; the numbers, each plus one, in bits 32 to 47, 16 to 31 and 0 to 15,
   // with 0 for one that is not there: so a name comes before its own extensions.
   U64 value_ = 0;
};

constexpr bool isPortChannel( IntfId const & intfId ) {
   return intfId.kind() == IntfId::Kind::portChannel;
}

}  // namespace Pelk

template<> struct std::hash< Pelk::IntfId > {
   std::size_t operator()( Pelk::IntfId const & intfId ) const noexcept {
      return std::hash< U64 >()( intfId.value_ );
   }
};
