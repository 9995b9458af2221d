#include <Scenario/Sources.h>

#include <algorithm>

namespace Scenario {

int Sources::add( std::string name, std::string_view text ) {
   int const before = lines_;
   sources_.push_back( { std::move( name ), before } );
   lines_ += static_cast< int >( std::count( text.begin(), text.end(), '\n' ) ) + 1;
   return before;
}

Sources::Place Sources::at( int line ) const {
   auto source = std::find_if( sources_.rbegin(), sources_.rend(),
                               [ & ]( Source const & one ) { return one.before < line; } );
   if ( source == sources_.rend() ) {
      return { "", line };
   }
   return { source->name, line - source->before };
}

std::string Sources::placeOf( int line ) const {
   Place const place = at( line );
   return place.name + ":" + std::to_string( place.line );
}

}  // namespace Scenario
