#include <Shim/OneCallSdk.h>

namespace Shim {

S32 Sdk::make( Call & call ) {
   return rowOf( call.operation ).make( *this, call );
}

}  // namespace Shim
