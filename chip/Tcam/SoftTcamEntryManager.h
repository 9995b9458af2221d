// The entry manager of one field-processor group, over all units of the software chip.
//
// The contract of the base class (VornalTcam/EntryManager.h), and beyond it:
//
// - The `exhausted` flag of a unit says that a request has been refused since room was last made
//   there. A request that is refused sets it; a release, or another user giving back, clears it
//   once there is room. A unit on which no request was ever refused has no flag.
// - The room of a group is shared with other users; foreignEntriesIs() is how much they hold.
// - installEntry on an installed entry writes it again. reinstallEntry is refused on one that is
//   not installed.
// - The priority is staged like qualifiers and actions, and in force from the next (re)install on.
// - addEgressMaskAction on an entry that has a mask changes nothing, and so does
//   updateEgressMaskAction on one that has none, and any operation on an unknown unit or entry.
//   Operations that return nothing tell their result only to the observer.
// - Request keys are not kept: every request is for a new entry. The observer is told of a key that
//   is not empty, as the request's value "key".
// - A call that a fault lets fail (Calls/Faults.h) changes nothing.
//
// Every operation of the base class is told to the observer, before the flag that it changes is
// notified.
#pragma once

#include <Calls/Faults.h>
#include <Calls/HardwareCall.h>
#include <FieldProcessor/Unit.h>
#include <VornalTcam/EntryManager.h>

namespace Chip {

class SoftTcamEntryManager : public Vornal::VornalUnboundedTcamEntryManager {
   KIV_ENTITY( SoftTcamEntryManager, Vornal::VornalUnboundedTcamEntryManager )
   // Numbers of entries on a unit; 0 for a unit without the group.
   KIV_QUERY( U32, capacity, ( U32 unit ) )
   KIV_QUERY( U32, used, ( U32 unit ) )
   KIV_QUERY( U32, foreignEntries, ( U32 unit ) )
   // Other users hold `count` entries on the unit from now on, or as many as there is room for.
   // Returns how many they hold then.
   KIV_OPERATION( U32, foreignEntriesIs, ( U32 unit, U32 count ) )

   // Units, observer and faults are not owned and outlive the manager; the latter two may be
   // nullptr.
   SoftTcamEntryManager( Vornal::TcamGroupAssignment group, Units & units, CallObserver * observer,
                         Faults * faults = nullptr )
         : VornalUnboundedTcamEntryManager( group ),
           units_( units ),
           observer_( observer ),
           faults_( faults ) {}

   U32 getEntry( U32 unit, std::string const & name, VornalTcam::RequestKey const & key ) override;
   S32 installEntry( U32 unit, U32 entryId ) override;
   S32 reinstallEntry( U32 unit, U32 entryId ) override;
   void releaseEntry( U32 unit, U32 entryId ) override;
   void setPriorityForEntry( U32 unit, U32 entryId, U32 priority ) override;

   void addEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & pbmp ) override;
   void updateEgressMaskAction( U32 unit, U32 entryId, _shr_pbmp const & pbmp ) override;
   Vornal::EgressMaskResult getEgressMaskActionPbmp( U32 unit, U32 entryId ) override;

 private:
   Group * groupOn( U32 unit ) const { return units_.group( unit, group() ); }
   // The result code of the operation `name` on the group, or on the entry.
   template< typename Operation >
   S32 onGroup( std::string_view name, U32 unit, Operation operation );
   template< typename Operation >
   S32 onEntry( std::string_view name, U32 unit, U32 entryId, Operation operation );

   template< typename MakeCall > void tell( MakeCall makeCall ) const;
   void roomMade( U32 unit );

   Units & units_;
   CallObserver * observer_;
   Faults * faults_;
};

}  // namespace Chip
