// Lists of ports, as a test writes them.
#pragma once

#include <vector>

#include <VornalTypes/VornalPortList.h>

namespace Support {

inline VornalTypes::VornalPortList portsOf( std::vector< VornalTypes::VornalPort > const & ports ) {
   VornalTypes::VornalPortList list;
   for ( VornalTypes::VornalPort const & port : ports ) {
      list.portIs( port );
   }
   return list;
}

}  // namespace Support
