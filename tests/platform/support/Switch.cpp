#include "Switch.h"

#include <Kiv/Rows.h>

KIV_DEFINE( Support::Port )
KIV_DEFINE( Support::FabricPort )
KIV_DEFINE_NAMED( Support::Switch )
KIV_DEFINE_NAMED( Support::Chassis )

namespace Support {

U32 Switch::metric( std::string const & prefix ) const {
   return route( prefix );
}

U32 Switch::metric( std::string const & prefix, U32 cost ) {
   return routeIs( prefix, route( prefix ) + cost );
}

U32 Switch::metric() {
   U32 total = 0;
   for ( auto iter = routeIter(); iter; ++iter ) {
      total += iter.value();
   }
   return total;
}

void Switch::shutdown() {
   portDelAll();
}

Quelm::Ptr< Port > Switch::fastestPort() {
   Quelm::Ptr< Port > fastest;
   for ( auto iter = portIter(); iter; ++iter ) {
      if ( !fastest || iter.value()->speed() > fastest->speed() ) {
         fastest = iter.value();
      }
   }
   return fastest;
}

std::string Switch::model() {
   return "pizza box";
}

std::string Chassis::model() {
   return "chassis of " + std::to_string( slots() );
}

void Chassis::shutdown( U8 slot ) {
   slotPowerDel( slot );
}

}  // namespace Support
