#include <Scenario/ReadError.h>

#include <algorithm>
#include <utility>

#include <Scenario/Characters.h>
#include <Text/Printable.h>

namespace Scenario {

namespace {

std::string shown( std::vector< Problem > const & problems ) {
   std::string text;
   std::size_t const count = std::min( problems.size(), ReadError::kMostShown );
   for ( std::size_t n = 0; n < count; ++n ) {
      text += ( n == 0 ? "" : "\n" ) + problems[ n ].text();
   }
   if ( problems.size() > count ) {
      text += "\nand " + std::to_string( problems.size() - count ) + " more";
   }
   return text;
}

}  // namespace

std::string Problem::text() const {
   std::string const place = line == 0 ? file : file + ':' + std::to_string( line );
   return Text::printable( place + ": " + shortened( message ) );
}

ReadError::ReadError( std::vector< Problem > problems )
      : std::runtime_error( shown( problems ) ), problems_( std::move( problems ) ) {}

}  // namespace Scenario
