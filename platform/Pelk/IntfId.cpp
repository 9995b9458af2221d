#include <Pelk/IntfId.h>

#include <algorithm>
#include <array>
#include <charconv>

#include <Quelm/Error.h>

namespace Pelk {

namespace {

struct KindRow {
   IntfId::Kind kind;
   std::string_view name;
   std::string_view shortName;
   int mostNumbers;
};

constexpr std::array< KindRow, 6 > kKinds{ {
   { IntfId::Kind::ethernet, "Ethernet", "Et", 3 },
   { IntfId::Kind::loopback, "Loopback", "Lo", 1 },
   { IntfId::Kind::management, "Management", "Ma", 2 },
   { IntfId::Kind::portChannel, "Port-Channel", "Po", 1 },
   { IntfId::Kind::vlan, "Vlan", "Vl", 1 },
   { IntfId::Kind::vxlan, "Vxlan", "Vx", 1 },
} };

// The row of a kind other than none.
KindRow const & rowOf( IntfId::Kind kind ) {
   return kKinds[ static_cast< std::size_t >( kind ) - 1 ];
}

[[noreturn]] void refuse( std::string_view name, std::string const & reason ) {
   throw Quelm::TextError( "'" + std::string( name ) + "' is not an interface: " + reason );
}

KindRow const & rowOfName( std::string_view name ) {
   auto const * const row =
      std::find_if( kKinds.begin(), kKinds.end(), [ & ]( KindRow const & candidate ) {
         return name.starts_with( candidate.name );
      } );
   if ( row == kKinds.end() ) {
      refuse( name,
              "a name is Ethernet, Loopback, Management, Port-Channel, Vlan or Vxlan and a "
              "number, as in Ethernet1 or Ethernet3/1" );
   }
   return *row;
}

U64 number( std::string_view name, std::string_view digits ) {
   U64 value = 0;
   char const * const last = digits.data() + digits.size();
   auto const [ end, error ] = std::from_chars( digits.data(), last, value );
   bool const hasLeadingZero = digits.size() > 1 && digits.front() == '0';
   if ( error != std::errc() || end != last || hasLeadingZero || value > IntfId::kHighestNumber ) {
      refuse( name, "'" + std::string( digits ) + "' is not a number from 0 to " +
                       std::to_string( IntfId::kHighestNumber ) + " without leading zeros" );
   }
   return value;
}

}  // namespace

IntfId IntfId::fromString( std::string_view name ) {
   IntfId result;
   if ( name.empty() ) {
      return result;
   }
   KindRow const & row = rowOfName( name );
   result.value_ = U64{ static_cast< U8 >( row.kind ) } << kKindShift;
   std::string_view rest = name.substr( row.name.size() );
   int shift = kKindShift;
   for ( bool isLast = false; !isLast; ) {
      std::size_t const end = std::min( rest.find( '/' ), rest.size() );
      isLast = end == rest.size();
      shift -= kNumberBits;
      if ( shift < kKindShift - row.mostNumbers * kNumberBits ) {
         refuse( name, "it has too many numbers (" + std::string( row.name ) + ": at most " +
                          std::to_string( row.mostNumbers ) + ")" );
      }
      result.value_ |= ( number( name, rest.substr( 0, end ) ) + 1 ) << shift;
      rest.remove_prefix( isLast ? end : end + 1 );
   }
   return result;
}

std::string IntfId::shortName() const {
   std::string out;
   if ( !isEmpty() ) {
      out += rowOf( kind() ).shortName;
      numbersTo( out );
   }
   return out;
}

void IntfId::textTo( std::string & out ) const {
   if ( !isEmpty() ) {
      out += rowOf( kind() ).name;
      numbersTo( out );
   }
}

IntfId IntfId::textFrom( Quelm::TextReader & in ) {
   return fromString( in.takeWhile( Quelm::isNameCharacter ) );
}

void IntfId::numbersTo( std::string & out ) const {
   constexpr U64 kNumberMask = ( U64{ 1 } << kNumberBits ) - 1;
   for ( int shift = kKindShift - kNumberBits; shift >= 0; shift -= kNumberBits ) {
      U64 const numberPlusOne = value_ >> shift & kNumberMask;
      if ( numberPlusOne == 0 ) {
         return;
      }
      out += shift == kKindShift - kNumberBits ? "" : "/";
      out += std::to_string( numberPlusOne - 1 );
   }
}

}  // namespace Pelk
