#include <Report/Texts.h>

#include <Text/Printable.h>

namespace Report {

TextId Texts::idOf( std::string const & text ) {
   auto const [ known, isNew ] = ids_.try_emplace( text, static_cast< TextId >( texts_.size() ) );
   if ( isNew ) {
      texts_.push_back( Text::printable( text ) );
   }
   return known->second;
}

}  // namespace Report
