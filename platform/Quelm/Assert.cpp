#include <Quelm/Assert.h>

#include <cstdlib>
#include <iostream>
#include <string>

namespace Quelm {

void assertionFailed( SourcePlace const & place, char const * expression ) {
   std::string const text = std::string( place.file ) + ":" + std::to_string( place.line ) + ": " +
                            place.function + ": Assertion '" + expression + "' failed.\n";
   std::cerr << text << std::flush;
   std::abort();
}

}  // namespace Quelm
