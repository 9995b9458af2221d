#include <FieldProcessor/Fields.h>

namespace Chip {

std::optional< Action > actionOf( U32 sdkAction ) {
   auto const * const found =
      std::find_if( kActionTable.begin(), kActionTable.end(), [ & ]( ActionRow const & row ) {
         return row.sdkAction && *row.sdkAction == sdkAction;
      } );
   return found == kActionTable.end() ? std::nullopt : std::optional( found->action );
}

}  // namespace Chip
