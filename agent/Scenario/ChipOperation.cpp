#include <Scenario/ChipOperation.h>

#include <Calls/Faults.h>
#include <Scenario/Shape.h>

namespace Scenario {

Choices< std::string_view > const & chipOperations() {
   static Choices< std::string_view > const choices = [] {
      Choices< std::string_view > all{
         { "chip-operation", "An operation of the chip that can give a result code." }, {}
      };
      for ( std::string_view const name : Chip::kFallibleOperations ) {
         all.all.push_back( { name, name } );
      }
      return all;
   }();
   return choices;
}

std::string operationShape() {
   return Shape::of( "chip-operation", "The operation; any that can fail if left out." );
}

std::string callNumberShape( std::string const & otherwise ) {
   return Shape::number( 1, kHighestCall,
                         "The number of the call, counted from now on" + otherwise + '.' );
}

}  // namespace Scenario
