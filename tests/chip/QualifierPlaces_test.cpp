// A qualifier is told in few places: the SDK's operations, the row of the tables, and the pipeline
// that fills the field. Recorders, decorators, texts and scenarios read the tables.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>

namespace QualifierPlacesTest {

using Files = std::set< std::string >;

std::string inLowerCase( std::string text ) {
   std::transform( text.begin(), text.end(), text.begin(), []( unsigned char letter ) {
      return static_cast< char >( std::tolower( letter ) );
   } );
   return text;
}

std::string contentOf( std::filesystem::path const & file ) {
   std::ifstream stream( file );
   return { std::istreambuf_iterator< char >( stream ), {} };
}

// The files of these rings that name the qualifier, in whatever case.
Files filesThatName( std::string const & qualifier ) {
   std::filesystem::path const root = VORNAL_SOURCE_DIR;
   Files files;
   for ( char const * const ring : { "hardware-access", "chip", "agent" } ) {
      for ( auto const & entry : std::filesystem::recursive_directory_iterator( root / ring ) ) {
         std::string const name = relative( entry.path(), root ).string();
         bool const isSource = name.ends_with( ".h" ) || name.ends_with( ".cpp" );
         if ( isSource && inLowerCase( contentOf( entry ) ).find( inLowerCase( qualifier ) ) !=
                             std::string::npos ) {
            files.insert( name );
         }
      }
   }
   files.erase( "agent/Audit/WantedRules.cpp" );  // the rules that the plug-in is to program
   return files;
}

TEST( QualifierPlaces, AreFourFiles ) {
   Files const expected{ "chip/FieldProcessor/Fields.h", "chip/Pipeline/Engine.cpp",
                         "hardware-access/Shim/OneCallSdk.h", "hardware-access/Shim/Shim.h" };
   EXPECT_EQ( filesThatName( "TunnelTerminated" ), expected );
   EXPECT_EQ( filesThatName( "VxlanNetworkId" ), expected );
}

}  // namespace QualifierPlacesTest
