#include <Calls/HardwareCall.h>

#include <array>
#include <charconv>

#include <FieldProcessor/ResultCode.h>
#include <Quelm/Text.h>

namespace Chip {

namespace {

std::string hexadecimal( U32 number ) {
   std::array< char, 8 > digits{};
   auto * const end = std::to_chars( digits.begin(), digits.end(), number, 16 ).ptr;
   return "0x" + std::string( digits.begin(), end );
}

bool readsBetterInHexadecimal( std::string_view name ) {
   return name == "gport" || name.ends_with( "mask" ) || name.ends_with( "Mask" );
}

std::string valueText( NamedValue const & named ) {
   if ( U32 const * const number = std::get_if< U32 >( &named.value ) ) {
      return readsBetterInHexadecimal( named.name ) ? hexadecimal( *number )
                                                    : std::to_string( *number );
   }
   if ( std::string const * const text = std::get_if< std::string >( &named.value ) ) {
      return Quelm::textOf( *text );
   }
   return Quelm::textOf( std::get< Brum::PerUnitBitmap >( named.value ) );
}

std::string codeText( S32 code ) {
   std::string const number = std::to_string( code );
   std::string const name( resultName( code ) );
   return code == 0 || name.empty() ? number : number + " " + name;
}

}  // namespace

std::string toText( HardwareCall const & call ) {
   std::string values;
   for ( NamedValue const & named : call.values ) {
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

}  // namespace Chip
