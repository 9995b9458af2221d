#include <Replay/CallReplay.h>

#include <algorithm>

#include <Quelm/Error.h>

namespace Chip {

namespace {

NamedValue const & namedValueOf( HardwareCall const & call, std::string_view name ) {
   auto const found =
      std::find_if( call.values.begin(), call.values.end(),
                    [ & ]( NamedValue const & value ) { return value.name == name; } );
   if ( found == call.values.end() ) {
      throw Quelm::Error( "the call " + call.operation + " has no value '" + std::string( name ) +
                          "'" );
   }
   return *found;
}

// An action is recorded by its name, everything else of a field call as a number.
U32 numberOf( NamedValue const & value ) {
   if ( auto const * const number = std::get_if< U32 >( &value.value ) ) {
      return *number;
   }
   auto const * const name = std::get_if< std::string >( &value.value );
   auto const * const row =
      std::find_if( kActionTable.begin(), kActionTable.end(), [ & ]( ActionRow const & one ) {
         return name && one.sdkAction && one.name == *name;
      } );
   if ( row == kActionTable.end() ) {
      throw Quelm::Error( "'" + value.name + "' of a field call is no number and no action" );
   }
   return *row->sdkAction;
}

Shim::FieldOperationRow const * fieldOperationNamed( std::string_view name ) {
   auto const * const row =
      std::find_if( Shim::kFieldOperations.begin(), Shim::kFieldOperations.end(),
                    [ & ]( Shim::FieldOperationRow const & one ) { return one.name == name; } );
   return row == Shim::kFieldOperations.end() ? nullptr : row;
}

bool isReading( std::string_view operation ) {
   return operation.ends_with( "_get" ) || operation == "getEgressMaskActionPbmp";
}

bool isMade( HardwareCall const & call ) {
   return call.returnCode ? *call.returnCode == codeOf( ResultCode::None ) : call.entry != 0;
}

}  // namespace

template< typename Value > Value const & valueOf( HardwareCall const & call, char const * name ) {
   auto const * const value = std::get_if< Value >( &namedValueOf( call, name ).value );
   if ( !value ) {
      throw Quelm::Error( "the call " + call.operation + " has another kind of '" + name + "'" );
   }
   return *value;
}
template U32 const & valueOf( HardwareCall const & call, char const * name );
template std::string const & valueOf( HardwareCall const & call, char const * name );
template Brum::PerUnitBitmap const & valueOf( HardwareCall const & call, char const * name );

std::optional< Shim::Call > fieldCallOf( HardwareCall const & recorded ) {
   auto const * const row = fieldOperationNamed( recorded.operation );
   if ( !row ) {
      return std::nullopt;
   }
   Shim::Call call{ row->operation, recorded.unit, recorded.entry };
   for ( std::size_t n = 0; n < row->valueCount(); ++n ) {
      call.values.add( numberOf( namedValueOf( recorded, row->valueNames.at( n ) ) ) );
   }
   return call;
}

void CallReplay::make( HardwareCall const & call ) {
   if ( !isMade( call ) || isReading( call.operation ) ) {
      return;
   }
   auto fieldCall = fieldCallOf( call );
   S32 const rc = fieldCall ? sdk_.make( *fieldCall ) : makeManagerCall( call );
   if ( rc != codeOf( ResultCode::None ) ) {
      throw Quelm::Error( "the call " + call.operation +
                          " has another result than at first: " + std::string( resultText( rc ) ) );
   }
}

S32 CallReplay::makeManagerCall( HardwareCall const & recorded ) {
   auto const assignment =
      static_cast< Vornal::TcamGroupAssignment >( valueOf< U32 >( recorded, "group" ) );
   Group * const group = units_.group( recorded.unit, assignment );
   if ( !group ) {
      return codeOf( ResultCode::UnknownUnit );
   }
   std::string_view const operation = recorded.operation;
   if ( operation == "getEntry" ) {
      U32 const id = group->entryNew( valueOf< std::string >( recorded, "name" ) );
      return codeOf( id == recorded.entry ? ResultCode::None : ResultCode::UnknownEntry );
   }
   if ( operation == "installEntry" ) {
      return codeOf( group->install( recorded.entry ) );
   }
   if ( operation == "reinstallEntry" ) {
      return codeOf( group->reinstall( recorded.entry ) );
   }
   if ( operation == "releaseEntry" ) {
      return codeOf( group->release( recorded.entry ) );
   }
   Entry * const entry = group->entry( recorded.entry );
   if ( !entry ) {
      return codeOf( ResultCode::UnknownEntry );
   }
   if ( operation == "setPriorityForEntry" ) {
      entry->priorityIs( valueOf< U32 >( recorded, "priority" ) );
      return codeOf( ResultCode::None );
   }
   ActionParameters const mask{ .ports = valueOf< Brum::PerUnitBitmap >( recorded, "ports" ) };
   return codeOf( operation == "addEgressMaskAction"
                     ? entry->actionAdd( Action::EgressMask, mask )
                     : entry->actionUpdate( Action::EgressMask, mask ) );
}

}  // namespace Chip
