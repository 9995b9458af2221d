#include <Exploring/Catalogue.h>

#include <sstream>

#include <fmt/format.h>

#include <Process/BoundedFile.h>
#include <Process/WholeFile.h>
#include <Story/InputError.h>

namespace Exploring {

namespace fs = std::filesystem;

std::string lineOf( Key const & key ) {
   return fmt::format( "{} {}", nameOf( key.kind ), key.what );
}

Catalogue catalogueOf( Findings const & findings ) {
   Catalogue lines;
   for ( auto const & [ key, found ] : findings.all ) {
      lines.insert( lineOf( key ) );
   }
   return lines;
}

Catalogue catalogueIn( fs::path const & file ) {
   constexpr std::size_t kLargest = std::size_t{ 16 } << 20U;
   auto const text = Process::contentOf( file, kLargest );
   if ( !text ) {
      throw Story::InputError( file.string() +
                               ": the catalogue cannot be read; '--write' makes one" );
   }
   std::istringstream in( *text );
   Catalogue lines;
   for ( std::string line; std::getline( in, line ); ) {
      if ( !line.empty() && !line.starts_with( '#' ) ) {
         lines.insert( line );
      }
   }
   return lines;
}

void writeFindings( fs::path const & folder, Exploration const & exploration,
                    Findings const & findings ) {
   std::error_code error;
   fs::create_directories( folder, error );
   std::size_t number = 0;
   for ( auto const & [ key, found ] : findings.all ) {
      fs::path const file = folder / fmt::format( "{:02}.yaml", ++number );
      Process::writeWhole( file, fmt::format( "# {}\n{}", lineOf( key ),
                                              exploration.scenarioText( found.shortest, file ) ) );
   }
   std::string text;
   for ( std::string const & line : catalogueOf( findings ) ) {
      text += line + '\n';
   }
   Process::writeWhole( folder / "catalogue", text );
}

}  // namespace Exploring
