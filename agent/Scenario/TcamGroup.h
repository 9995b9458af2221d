// The field-processor groups that a scenario can name.
#pragma once

#include <string_view>

#include <Scenario/Values.h>
#include <VornalTcam/EntryManager.h>

namespace Scenario {

// Vornal::kIfpLocalBiasGroup and Vornal::kEfpLocalBiasGroup.
enum class TcamGroup { ingress, egress };

// The words of the language.
Choices< TcamGroup > const & tcamGroups();
std::string_view nameOf( TcamGroup group );

// The group's number on the chip.
Vornal::TcamGroupAssignment assignmentOf( TcamGroup group );

// Rows of tables: a group, and a unit of the switch.
template< typename T > void readGroup( Reading & reading, Value const & value, T & target ) {
   target.group = choiceOf( reading, value, tcamGroups() ).value_or( TcamGroup::ingress );
}

template< typename T > void readUnit( Reading & reading, Value const & value, T & target ) {
   auto const number = numberOf( reading, value, 0, 0xffff );
   if ( number && reading.module( static_cast< U16 >( *number ), value.line ) ) {
      target.unit = static_cast< U16 >( *number );
   }
}

}  // namespace Scenario
