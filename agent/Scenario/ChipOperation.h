// Words of steps that are about a later call of the chip: its operation, and its number.
#pragma once

#include <string_view>

#include <Scenario/Values.h>

namespace Scenario {

inline constexpr U32 kHighestCall = ~U32{ 0 };

// The operations that can give a result code (Chip::kFallibleOperations).
Choices< std::string_view > const & chipOperations();

// Reads the word into the member of that name.
template< typename T > void readOperation( Reading & reading, Value const & value, T & target ) {
   target.operation = choiceOf( reading, value, chipOperations() ).value_or( "" );
}
template< typename T > void readCallNumber( Reading & reading, Value const & value, T & target ) {
   target.number = numberOf( reading, value, 1, kHighestCall ).value_or( 1 );
}

// The words' shapes; `otherwise` says what holds without the number.
std::string operationShape();
std::string callNumberShape( std::string const & otherwise );

}  // namespace Scenario
