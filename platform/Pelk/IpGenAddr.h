// Pelk::IpGenAddr: an IPv4 or IPv6 address together with its family.
//
// It is the key of every collection per remote VTEP. So it is small (20 bytes), trivially copyable,
// and compared in a few instructions: the address is kept as numbers in host order, the most
// significant first. An IPv4 address fills the first of them and leaves the others zero.
//
// The family is part of the value: 192.0.2.1 and ::ffff:192.0.2.1 are two addresses. Every IPv4
// address comes before every IPv6 address; within a family the order is that of the bytes.
//
// Text. IPv4 is four decimal numbers without leading zeros, since programs disagree on whether
// those mean octal (RFC 6943, section 3.1.1). IPv6 is read in all forms of RFC 4291, section 2.2,
// and written in the one form of RFC 5952: lower case, no leading zeros, the first of the longest
// runs of two or more zero groups as "::", IPv4-mapped addresses with their last 32 bits dotted. A
// zone or a prefix length is not part of an address and is refused.
//
// Failures: only reading fails, with Quelm::TextError, which quotes the text and names the mistake.
#pragma once

#include <array>
#include <compare>
#include <functional>
#include <string>
#include <string_view>

#include <Quelm/Integers.h>
#include <Quelm/Text.h>

namespace Pelk {

class IpGenAddr : public Quelm::Value {
 public:
   enum class Family : U32 { ipv4, ipv6 };

   // The unspecified IPv4 address, 0.0.0.0.
   constexpr IpGenAddr() = default;

   // From the bytes in network order.
   static constexpr IpGenAddr ipv4( std::array< U8, 4 > const & bytes );
   static constexpr IpGenAddr ipv6( std::array< U8, 16 > const & bytes );
   static IpGenAddr fromString( std::string_view text );

   constexpr Family family() const { return family_; }
   // The bytes in network order; of an IPv4 address the first four, followed by zeros.
   constexpr std::array< U8, 16 > bytes() const;

   std::string stringValue() const { return Quelm::textOf( *this ); }

   friend constexpr bool operator==( IpGenAddr const & a, IpGenAddr const & b ) {
      return a.family_ == b.family_ && a.high() == b.high() && a.low() == b.low();
   }
   friend constexpr std::strong_ordering operator<=>( IpGenAddr const & a, IpGenAddr const & b ) {
      if ( a.family_ != b.family_ ) {
         return a.family_ <=> b.family_;
      }
      return a.high() != b.high() ? a.high() <=> b.high() : a.low() <=> b.low();
   }

   static std::string_view textTypeName() { return "Pelk::IpGenAddr"; }
   void textTo( std::string & out ) const;
   static IpGenAddr textFrom( Quelm::TextReader & in );

 private:
   friend struct std::hash< IpGenAddr >;

   static constexpr U32 word( U8 const * bytes ) {
      return U32{ bytes[ 0 ] } << 24 | U32{ bytes[ 1 ] } << 16 | U32{ bytes[ 2 ] } << 8 |
             bytes[ 3 ];
   }
   constexpr U64 high() const { return U64{ words_[ 0 ] } << 32 | words_[ 1 ]; }
   constexpr U64 low() const { return U64{ words_[ 2 ] } << 32 | words_[ 3 ]; }

   Family family_ = Family::ipv4;
   std::array< U32, 4 > words_{};  // 32-bit words: 64-bit ones would pad the class to 24 bytes
};

constexpr IpGenAddr IpGenAddr::ipv4( std::array< U8, 4 > const & bytes ) {
   IpGenAddr result;
   result.words_[ 0 ] = word( bytes.data() );
   return result;
}

constexpr IpGenAddr IpGenAddr::ipv6( std::array< U8, 16 > const & bytes ) {
   IpGenAddr result;
   result.family_ = Family::ipv6;
   for ( std::size_t n = 0; n < result.words_.size(); ++n ) {
      result.words_[ n ] = word( bytes.data() + 4 * n );
   }
   return result;
}

constexpr std::array< U8, 16 > IpGenAddr::bytes() const {
   std::array< U8, 16 > result{};
   for ( std::size_t n = 0; n < result.size(); ++n ) {
      result[ n ] = static_cast< U8 >( words_[ n / 4 ] >> ( 24 - 8 * ( n % 4 ) ) );
   }
   return result;
}

}  // namespace Pelk

template<> struct std::hash< Pelk::IpGenAddr > {
   std::size_t operator()( Pelk::IpGenAddr const & address ) const noexcept {
      // Neighbouring VTEPs differ in a few bits at either end: a multiplication by an odd number
      // without pattern (2^64 over the golden ratio) spreads those over the upper half.
      constexpr U64 kSpread = 0x9e3779b97f4a7c15;
      U64 const mixed =
         ( address.high() + static_cast< U64 >( address.family() ) ) * kSpread ^ address.low();
      return mixed * kSpread ^ mixed >> 32;
   }
};
