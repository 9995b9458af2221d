// A call of the chip as one line, for tests that compare what reaches the hardware:
//
//    unit 0 entry 3: bcm_field_qualify_PacketRes( data 4, mask 0xff ) = 0
//    unit 0 entry 3: releaseEntry( group 157 ) = -2 ENTRY
//
// Masks and gports are in hexadecimal; ports are listed by number.
#pragma once

#include <array>
#include <charconv>
#include <string>
#include <string_view>

#include <Calls/HardwareCall.h>
#include <Quelm/Text.h>

namespace ChipTest {

inline std::string hexadecimal( U32 number ) {
   std::array< char, 8 > digits{};
   auto * const end = std::to_chars( digits.begin(), digits.end(), number, 16 ).ptr;
   return "0x" + std::string( digits.begin(), end );
}

inline bool readsBetterInHexadecimal( std::string_view name ) {
   return name == "gport" || name.ends_with( "mask" ) || name.ends_with( "Mask" );
}

inline std::string valueText( Chip::NamedValue const & named ) {
   if ( U32 const * const number = std::get_if< U32 >( &named.value ) ) {
      return readsBetterInHexadecimal( named.name ) ? hexadecimal( *number )
                                                    : std::to_string( *number );
   }
   if ( std::string const * const text = std::get_if< std::string >( &named.value ) ) {
      return Quelm::textOf( *text );
   }
   return Quelm::textOf( std::get< Brum::PerUnitBitmap >( named.value ) );
}

// A failure of this chip with its name, any other code as a number.
inline std::string codeText( S32 code ) {
   constexpr std::array< std::string_view, 8 > kNames{ "",          "UNIT",         "ENTRY",
                                                       "NOT_FOUND", "EXISTS",       "UNSUPPORTED",
                                                       "BAD_VALUE", "NOT_INSTALLED" };
   std::string const number = std::to_string( code );
   auto const place = static_cast< std::size_t >( -S64{ code } );
   return place == 0 || place >= kNames.size() ? number
                                               : number + " " + std::string( kNames.at( place ) );
}

inline std::string textOf( Chip::HardwareCall const & call ) {
   std::string values;
   for ( Chip::NamedValue const & named : call.values ) {
      values += ( values.empty() ? " " : ", " ) + named.name + " " + valueText( named );
   }
   std::string line = "unit " + std::to_string( call.unit ) + " entry " +
                      std::to_string( call.entry ) + ": " + call.operation + "(" + values +
                      ( values.empty() ? ")" : " )" );
   if ( call.returnCode ) {
      line += " = " + codeText( *call.returnCode );
   }
   return line;
}

}  // namespace ChipTest
