#include <Story/EventForms.h>

#include <bit>

namespace Story::Binary {

namespace {

using Pelk::IpGenAddr;

template< std::size_t size > std::array< U8, size > addressBytes( In & in ) {
   std::array< U8, size > result{};
   for ( U8 & byte : result ) {
      byte = in.byte();
   }
   return result;
}

}  // namespace

void Form< IpGenAddr >::write( Out & out, IpGenAddr const & address ) {
   bool const isIpv6 = address.family() == IpGenAddr::Family::ipv6;
   auto const bytes = address.bytes();
   Binary::write( out, isIpv6 );
   for ( std::size_t n = 0; n < ( isIpv6 ? 16U : 4U ); ++n ) {
      out.byte( bytes.at( n ) );
   }
}

void Form< IpGenAddr >::read( In & in, IpGenAddr & address ) {
   address = Binary::read< bool >( in ) ? IpGenAddr::ipv6( addressBytes< 16 >( in ) )
                                        : IpGenAddr::ipv4( addressBytes< 4 >( in ) );
}

void Form< Brum::PerUnitBitmap >::write( Out & out, Brum::PerUnitBitmap const & ports ) {
   U64 used = 0;
   for ( U32 n = 0; n < Brum::PerUnitBitmap::kWords; ++n ) {
      used |= U64{ ports.word( n ) != 0 } << n;
   }
   out.number( used );
   for ( U32 n = 0; n < Brum::PerUnitBitmap::kWords; ++n ) {
      if ( ports.word( n ) != 0 ) {
         out.number( ports.word( n ) );
      }
   }
}

void Form< Brum::PerUnitBitmap >::read( In & in, Brum::PerUnitBitmap & ports ) {
   ports = {};
   constexpr U32 kWordBits = 32;
   U64 const used = in.below( U64{ 1 } << Brum::PerUnitBitmap::kWords );
   for ( U32 n = 0; n < Brum::PerUnitBitmap::kWords; ++n ) {
      if ( ( used >> n & 1U ) == 0 ) {
         continue;
      }
      U32 word = Binary::read< U32 >( in );
      if ( word == 0 ) {
         In::fail( "a word of ports is empty" );
      }
      for ( ; word != 0; word &= word - 1 ) {
         ports.bitSet( kWordBits * n + static_cast< U32 >( std::countr_zero( word ) ) );
      }
   }
}

}  // namespace Story::Binary
