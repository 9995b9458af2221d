#include <Record/Header.h>

#include <Record/File.h>
#include <Record/Items.h>

namespace Record {

namespace {

constexpr U32 kSkippableFrame = 0x184d2a50;  // a reader of zstd frames skips it
constexpr std::string_view kMark = "VORNALRC";
constexpr U32 kContent =
   kMark.size() + sizeof( kMajor ) + sizeof( kMinor ) + sizeof( layoutFingerprint() );
static_assert( kHeaderSize == 2 * sizeof( U32 ) + kContent );

// Little-endian, as in zstd.
template< typename Number > void put( std::string & bytes, Number number ) {
   for ( std::size_t n = 0; n < sizeof number; ++n ) {
      bytes += static_cast< char >( number >> ( 8 * n ) );
   }
}

std::string beginning() {
   std::string bytes;
   put( bytes, kSkippableFrame );
   put( bytes, kContent );
   return bytes += kMark;
}

}  // namespace

std::string headerNow() {
   std::string bytes = beginning();
   put( bytes, kMajor );
   put( bytes, kMinor );
   put( bytes, layoutFingerprint() );
   return bytes;
}

bool isHeader( std::string_view bytes ) {
   return bytes.starts_with( beginning() );
}

}  // namespace Record
