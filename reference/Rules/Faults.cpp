#include <Rules/Faults.h>

namespace Reference {

int Faults::codeOfNext( std::string const & operation ) {
   int code = 0;
   for ( CallFails & fault : calls_ ) {
      bool const isMeant = fault.operation.empty() || fault.operation == operation;
      if ( !isMeant || --fault.number > 0 ) {
         continue;
      }
      code = code == 0 ? fault.code : code;
      fault.number = fault.isLasting ? 1 : 0;
   }
   std::erase_if( calls_, []( CallFails const & fault ) { return fault.number == 0; } );
   return code;
}

bool Faults::isNextRefused() {
   for ( EntryIsRefused & fault : requests_ ) {
      --fault.number;
   }
   return std::erase_if( requests_, []( auto const & fault ) { return fault.number == 0; } ) > 0;
}

}  // namespace Reference
