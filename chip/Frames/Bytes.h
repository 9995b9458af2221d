// Numbers and addresses in a frame, in network order. To read or write beyond the end is a failed
// assertion, and never reaches the memory behind the frame: readers ask for the length first.
#pragma once

#include <algorithm>
#include <array>
#include <span>

#include <Frames/MacAddress.h>
#include <Pelk/IpGenAddr.h>
#include <Quelm/Assert.h>
#include <Quelm/Integers.h>

namespace Chip {

using Bytes = std::span< U8 const >;
using MutableBytes = std::span< U8 >;

namespace Detail {

template< std::size_t count > constexpr U64 numberAt( Bytes bytes, std::size_t at ) {
   QUELM_ASSERT( at + count <= bytes.size() );
   U64 number = 0;
   for ( std::size_t n = 0; n < count; ++n ) {
      number = number << 8 | bytes[ at + n ];
   }
   return number;
}

template< std::size_t count >
constexpr void putNumber( MutableBytes bytes, std::size_t at, U64 number ) {
   QUELM_ASSERT( at + count <= bytes.size() );
   for ( std::size_t n = count; n-- > 0; number >>= 8 ) {
      bytes[ at + n ] = static_cast< U8 >( number );
   }
}

template< std::size_t count >
constexpr std::array< U8, count > arrayAt( Bytes bytes, std::size_t at ) {
   QUELM_ASSERT( at + count <= bytes.size() );
   std::array< U8, count > result{};
   std::copy_n( bytes.begin() + static_cast< std::ptrdiff_t >( at ), count, result.begin() );
   return result;
}

}  // namespace Detail

constexpr U8 u8At( Bytes bytes, std::size_t at ) {
   return static_cast< U8 >( Detail::numberAt< 1 >( bytes, at ) );
}
constexpr U16 u16At( Bytes bytes, std::size_t at ) {
   return static_cast< U16 >( Detail::numberAt< 2 >( bytes, at ) );
}
constexpr U32 u24At( Bytes bytes, std::size_t at ) {
   return static_cast< U32 >( Detail::numberAt< 3 >( bytes, at ) );
}
constexpr MacAddress macAt( Bytes bytes, std::size_t at ) {
   return MacAddress( Detail::numberAt< MacAddress::kBytes >( bytes, at ) );
}
constexpr Pelk::IpGenAddr ipv4At( Bytes bytes, std::size_t at ) {
   return Pelk::IpGenAddr::ipv4( Detail::arrayAt< 4 >( bytes, at ) );
}
constexpr Pelk::IpGenAddr ipv6At( Bytes bytes, std::size_t at ) {
   return Pelk::IpGenAddr::ipv6( Detail::arrayAt< 16 >( bytes, at ) );
}

constexpr void putU8( MutableBytes bytes, std::size_t at, U8 value ) {
   Detail::putNumber< 1 >( bytes, at, value );
}
constexpr void putU16( MutableBytes bytes, std::size_t at, std::size_t value ) {
   Detail::putNumber< 2 >( bytes, at, value );
}
constexpr void putU24( MutableBytes bytes, std::size_t at, U32 value ) {
   Detail::putNumber< 3 >( bytes, at, value );
}
constexpr void putMac( MutableBytes bytes, std::size_t at, MacAddress address ) {
   Detail::putNumber< MacAddress::kBytes >( bytes, at, address.value() );
}
// As many bytes as the address's family has.
constexpr void putIp( MutableBytes bytes, std::size_t at, Pelk::IpGenAddr const & address ) {
   std::size_t const count = address.family() == Pelk::IpGenAddr::Family::ipv4 ? 4 : 16;
   QUELM_ASSERT( at + count <= bytes.size() );
   std::array< U8, 16 > const from = address.bytes();
   std::copy_n( from.begin(), count, bytes.begin() + static_cast< std::ptrdiff_t >( at ) );
}

}  // namespace Chip
