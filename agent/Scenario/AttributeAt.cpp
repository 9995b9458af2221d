#include <Scenario/AttributeAt.h>

namespace Scenario {

std::string textOf( AttributeAt const & at ) {
   return at.entity.stringValue() + ' ' + at.attribute +
          ( at.key.empty() ? "" : '[' + at.key + ']' );
}

void readPath( Reading & reading, Value const & value, StateDatabase::EntityPath & path ) {
   auto const text = stringOf( reading, value );
   if ( !text ) {
      return;
   }
   try {
      path = StateDatabase::EntityPath::fromString( *text );
   } catch ( Quelm::TextError const & error ) {
      reading.problem( value.line,
                       pathInQuotes( *text ) + " is not the path of an entity, as in " +
                          "/evpn/status/segmentStatus[Port-Channel2]: " + error.what() );
   }
}

}  // namespace Scenario
