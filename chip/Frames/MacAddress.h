// A MAC address: 48 bits, kept as one number so that copies and comparisons are one instruction.
//
// Its text is six pairs of hexadecimal digits, as in 00:00:5e:00:53:01; capital digits are read
// too. Reading throws Quelm::TextError, which quotes the text.
#pragma once

#include <compare>
#include <string>

#include <Quelm/Integers.h>
#include <Quelm/Text.h>

namespace Chip {

class MacAddress : public Quelm::Value {
 public:
   static constexpr std::size_t kBytes = 6;

   // 00:00:00:00:00:00
   constexpr MacAddress() = default;
   // From the lower 48 bits, 0x00005e005301.
   constexpr explicit MacAddress( U64 value ) : value_( value & 0xffffffffffff ) {}

   static constexpr MacAddress broadcast() { return MacAddress( 0xffffffffffff ); }
   static MacAddress fromString( std::string_view text );

   constexpr U64 value() const { return value_; }
   constexpr bool isBroadcast() const { return *this == broadcast(); }
   // Addressed to several: multicast or broadcast (IEEE 802, the I/G bit).
   constexpr bool isGroup() const { return ( value_ >> 40 & 1 ) != 0; }
   // 01:80:c2:00:00:00 to 0f, which bridges do not forward (IEEE 802.1Q, table 8-1).
   constexpr bool isReserved() const { return value_ >> 4 == 0x0180c200000; }

   std::string stringValue() const { return Quelm::textOf( *this ); }

   friend constexpr bool operator==( MacAddress const &, MacAddress const & ) = default;
   friend constexpr std::strong_ordering operator<=>( MacAddress const &,
                                                      MacAddress const & ) = default;

   static std::string_view textTypeName() { return "Chip::MacAddress"; }
   void textTo( std::string & out ) const;
   static MacAddress textFrom( Quelm::TextReader & in );

 private:
   U64 value_ = 0;
};

}  // namespace Chip
