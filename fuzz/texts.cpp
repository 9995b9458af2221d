// Any text is a value of a type, or is refused with a message. What is read writes itself as a text
// that reads as the same value, also as the key of a path. For libFuzzer; fuzz/README.md has the
// command.
//
// The first byte of the input chooses the type, the rest is the text.
#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>

#include <Brum/PerUnitBitmap.h>
#include <Frames/MacAddress.h>
#include <L3/VrfName.h>
#include <Pelk/IntfId.h>
#include <Pelk/IpGenAddr.h>
#include <Property.h>
#include <Quelm/Text.h>
#include <StateDatabase/EntityPath.h>
#include <VornalCentral/RemoteVtepKey.h>
#include <VornalCommon/ClassId.h>
#include <VornalTcam/RequestKey.h>
#include <VornalTypes/VornalPortList.h>
#include <Vxlan/SwTunnelGroupId.h>
#include <Vxlan/VniExtOrNone.h>

#include <arpa/inet.h>

namespace {

using Fuzz::mustHold;
using Pelk::IpGenAddr;
using StateDatabase::EntityPath;

template< typename T > std::optional< T > read( std::string_view text ) {
   try {
      return Quelm::fromText< T >( text );
   } catch ( Quelm::TextError const & error ) {
      mustHold( !std::string_view( error.what() ).empty(), "a refusal says why" );
      return std::nullopt;
   }
}

// A path takes the text of any value as a key, but that of another path.
template< typename T > void checkAsKey( std::string const & text ) {
   if ( std::is_same_v< T, EntityPath > || text.empty() ) {
      return;
   }
   EntityPath const path( { { "evpn", {} }, { "status", text } } );
   mustHold( EntityPath::fromString( path.stringValue() ) == path,
             "a key stands in a path as it is: " + text );
}

template< typename T > void check( std::string_view text ) {
   auto const value = read< T >( text );
   if ( !value ) {
      return;
   }
   std::string const written = Quelm::textOf( *value );
   auto const again = read< T >( written );
   mustHold( again && *again == *value, "what is written reads as the same: " + written );
   mustHold( Quelm::textOf( *again ) == written, "a value has one text: " + written );
   checkAsKey< T >( written );
}

// Names have one form only.
void checkIntfId( std::string_view text ) {
   check< Pelk::IntfId >( text );
   auto const value = read< Pelk::IntfId >( text );
   mustHold( !value || value->stringValue() == text, "an interface is read by its name alone" );
}

// The system's own reader takes the same addresses, and makes the same bytes of them.
void checkAddress( std::string_view text ) {
   check< IpGenAddr >( text );
   std::string const whole( text );
   bool const hasNul = whole.find( '\0' ) != std::string::npos;
   std::array< std::uint8_t, 16 > bytes{};
   bool const isIpv4 = !hasNul && inet_pton( AF_INET, whole.c_str(), bytes.data() ) == 1;
   bool const isIpv6 = !hasNul && inet_pton( AF_INET6, whole.c_str(), bytes.data() ) == 1;
   auto const value = read< IpGenAddr >( text );
   mustHold( value.has_value() == ( isIpv4 || isIpv6 ), "an address is one for the system, too" );
   if ( value ) {
      mustHold( ( value->family() == IpGenAddr::Family::ipv4 ) == isIpv4, "it has its family" );
      mustHold( value->bytes() == bytes, "it has the bytes that the system makes of it" );
   }
}

constexpr std::array kChecks{ checkIntfId,
                              checkAddress,
                              check< Chip::MacAddress >,
                              check< VornalCommon::ClassId >,
                              check< Vxlan::VniExtOrNone >,
                              check< Vxlan::SwTunnelGroupId >,
                              check< VornalCentral::RemoteVtepKey >,
                              check< Brum::PerUnitBitmap >,
                              check< VornalTypes::VornalPort >,
                              check< VornalTypes::VornalPortList >,
                              check< VornalTcam::RequestKey >,
                              check< EntityPath >,
                              check< L3::VrfName >,
                              check< std::string >,
                              check< bool >,
                              check< U64 >,
                              check< S32 > };

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   if ( size == 0 ) {
      return 0;
   }
   kChecks.at( data[ 0 ] % kChecks.size() )( Fuzz::textOf( data + 1, size - 1 ) );
   return 0;
}
