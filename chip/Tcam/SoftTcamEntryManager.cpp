#include <Tcam/SoftTcamEntryManager.h>

#include <Kiv/Rows.h>
#include <SoftSdk/PortBitmap.h>

KIV_DEFINE( Chip::SoftTcamEntryManager )

namespace Chip {

// --- Room

U32 SoftTcamEntryManager::capacity( U32 unit ) const {
   Group const * const group = groupOn( unit );
   return group ? group->capacity() : 0;
}

U32 SoftTcamEntryManager::used( U32 unit ) const {
   Group const * const group = groupOn( unit );
   return group ? group->used() : 0;
}

U32 SoftTcamEntryManager::foreignEntries( U32 unit ) const {
   Group const * const group = groupOn( unit );
   return group ? group->foreign() : 0;
}

U32 SoftTcamEntryManager::foreignEntriesIs( U32 unit, U32 count ) {
   Group * const group = groupOn( unit );
   if ( !group ) {
      return 0;
   }
   U32 const held = group->foreignIs( count );
   roomMade( unit );
   return held;
}

// Clears the unit's flag if a request would be granted now.
void SoftTcamEntryManager::roomMade( U32 unit ) {
   Group const * const group = groupOn( unit );
   auto const key = static_cast< U16 >( unit );
   if ( group && group->room() > 0 && exhausted( key ) ) {
      exhaustedIs( key, false );
   }
}

// --- Entries

template< typename Operation >
S32 SoftTcamEntryManager::onGroup( std::string_view name, U32 unit, Operation operation ) {
   if ( auto const failed = faults_ ? faults_->nextResult( name ) : std::nullopt ) {
      return *failed;
   }
   Group * const group = groupOn( unit );
   return codeOf( group ? operation( *group ) : ResultCode::UnknownUnit );
}

template< typename Operation >
S32 SoftTcamEntryManager::onEntry( std::string_view name, U32 unit, U32 entryId,
                                   Operation operation ) {
   return onGroup( name, unit, [ & ]( Group & group ) {
      Entry * const entry = group.entry( entryId );
      return entry ? operation( *entry ) : ResultCode::UnknownEntry;
   } );
}

// Tells the observer, with the group in front of the values. Without one the call is not made up.
template< typename MakeCall > void SoftTcamEntryManager::tell( MakeCall makeCall ) const {
   if ( observer_ ) {
      HardwareCall call = makeCall();
      call.values.insert( call.values.begin(), { "group", U32{ group() } } );
      observer_->callMade( call );
   }
}

U32 SoftTcamEntryManager::getEntry( U32 unit, std::string const & name,
                                    VornalTcam::RequestKey const & key ) {
   Group * const group = groupOn( unit );
   bool const isRefused = faults_ && faults_->isNextRefused();
   U32 const entryId = group && !isRefused ? group->entryNew( name ) : 0;
   tell( [ & ] {
      HardwareCall call{ "getEntry", {}, unit, entryId, { { "name", name } }, {} };
      if ( key != VornalTcam::RequestKey() ) {
         call.values.push_back( { "key", Quelm::textOf( key ) } );
      }
      return call;
   } );
   if ( group && entryId == 0 ) {
      exhaustedIs( static_cast< U16 >( unit ), true );
   }
   return entryId;
}

S32 SoftTcamEntryManager::installEntry( U32 unit, U32 entryId ) {
   S32 const rc =
      onGroup( __func__, unit, [ & ]( Group & group ) { return group.install( entryId ); } );
   tell( [ & ] { return HardwareCall{ "installEntry", {}, unit, entryId, {}, rc }; } );
   return rc;
}

S32 SoftTcamEntryManager::reinstallEntry( U32 unit, U32 entryId ) {
   S32 const rc =
      onGroup( __func__, unit, [ & ]( Group & group ) { return group.reinstall( entryId ); } );
   tell( [ & ] { return HardwareCall{ "reinstallEntry", {}, unit, entryId, {}, rc }; } );
   return rc;
}

void SoftTcamEntryManager::releaseEntry( U32 unit, U32 entryId ) {
   S32 const rc =
      onGroup( __func__, unit, [ & ]( Group & group ) { return group.release( entryId ); } );
   tell( [ & ] { return HardwareCall{ "releaseEntry", {}, unit, entryId, {}, rc }; } );
   if ( rc == codeOf( ResultCode::None ) ) {
      roomMade( unit );
   }
}

void SoftTcamEntryManager::setPriorityForEntry( U32 unit, U32 entryId, U32 priority ) {
   S32 const rc = onEntry( __func__, unit, entryId, [ & ]( Entry & entry ) {
      entry.priorityIs( priority );
      return ResultCode::None;
   } );
   tell( [ & ] {
      return HardwareCall{ "setPriorityForEntry",        {}, unit, entryId,
                           { { "priority", priority } }, rc };
   } );
}

// --- Egress mask

void SoftTcamEntryManager::addEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & pbmp ) {
   Brum::PerUnitBitmap const ports = bitmapOf( pbmp );
   S32 const rc = onEntry( __func__, unit, entryId, [ & ]( Entry & entry ) {
      return entry.actionAdd( Action::EgressMask, { .ports = ports } );
   } );
   tell( [ & ] {
      return HardwareCall{ "addEgressMaskAction", {}, unit, entryId, { { "ports", ports } }, rc };
   } );
}

void SoftTcamEntryManager::updateEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & pbmp ) {
   Brum::PerUnitBitmap const ports = bitmapOf( pbmp );
   S32 const rc = onEntry( __func__, unit, entryId, [ & ]( Entry & entry ) {
      return entry.actionUpdate( Action::EgressMask, { .ports = ports } );
   } );
   tell( [ & ] {
      return HardwareCall{
         "updateEgressMaskAction", {}, unit, entryId, { { "ports", ports } }, rc
      };
   } );
}

Vornal::EgressMaskResult SoftTcamEntryManager::getEgressMaskActionPbmp( U32 unit, U32 entryId ) {
   ActionParameters mask;
   S32 const rc = onEntry( __func__, unit, entryId, [ & ]( Entry const & entry ) {
      return entry.readBack( Action::EgressMask, mask );
   } );
   tell( [ & ] {
      HardwareCall call{ "getEgressMaskActionPbmp", {}, unit, entryId, {}, rc };
      if ( rc == codeOf( ResultCode::None ) ) {
         call.values.push_back( { "ports", mask.ports } );
      }
      return call;
   } );
   return { rc, pbmpOf( mask.ports ) };
}

}  // namespace Chip
