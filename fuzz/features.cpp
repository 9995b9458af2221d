// Any text is a file of feature toggles, and each has its value, or is reported once with line and
// remedy, and each toggle has its default. For libFuzzer; fuzz/README.md has the command.
#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <FeatureFiles/Reader.h>
#include <Property.h>

namespace {

using FeatureFiles::Damage;
using FeatureFiles::Reader;
using Fuzz::mustHold;

// The object of booleans, or null for any other text.
nlohmann::json togglesOf( std::string_view text ) {
   auto json = nlohmann::json::parse( text, nullptr, false );
   bool const isRight = json.is_object() &&
                        std::all_of( json.begin(), json.end(), []( nlohmann::json const & value ) {
                           return value.is_boolean();
                        } );
   return isRight ? json : nlohmann::json();
}

void checkDamage( Damage const & damage, std::string_view text ) {
   auto const lines =
      static_cast< std::size_t >( std::count( text.begin(), text.end(), '\n' ) ) + 1;
   mustHold( damage.line >= 1 && damage.line <= lines, "a damage has a line of the file" );
   mustHold( damage.what.find( "an object of booleans is expected" ) != std::string::npos,
             "a damage has its remedy" );
   mustHold( damage.text().find( '\n' ) == std::string::npos, "a damage is told in one line" );
}

// Every toggle is asked for, by both defaults, and one that no file names.
void checkValues( Reader & reader, std::string const & file, nlohmann::json const & toggles ) {
   for ( bool const byDefault : { false, true } ) {
      std::string other = "other";
      for ( auto const & [ name, value ] : toggles.items() ) {
         mustHold( reader.isEnabled( name, file, byDefault ) == value.get< bool >(),
                   "a toggle has the value that the file gives it: " + name );
         other += name;
      }
      mustHold( reader.isEnabled( other, file, byDefault ) == byDefault,
                "a toggle that the file does not name has its default" );
   }
   mustHold( reader.notAskedFor().empty(), "each toggle has been asked for" );
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   std::string_view const text = Fuzz::textOf( data, size );
   nlohmann::json const toggles = togglesOf( text );
   Fuzz::MemoryFile const file( text );
   std::vector< Damage > damages;
   Reader reader( Fuzz::MemoryFile::kFolder,
                  [ & ]( Damage const & damage ) { damages.push_back( damage ); } );
   reader.isEnabled( "asked", file.name(), false );
   mustHold( reader.notAskedFor().size() == toggles.size() - toggles.count( "asked" ),
             "the toggles that nobody has asked for are known" );
   checkValues( reader, file.name(), toggles );
   mustHold( damages.size() == ( toggles.is_object() ? 0U : 1U ), "a damage is told once" );
   if ( !damages.empty() ) {
      checkDamage( damages.front(), text );
   }
   return 0;
}
