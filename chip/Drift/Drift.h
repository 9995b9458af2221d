// Changes of the hardware that no user of it has asked for: a bit that tips over, an entry that
// another user of the chip destroys or copies.
//
// Verification exists because a chip can drift, and only a test makes it drift on purpose. This is
// the one door to the written copies (FieldProcessor/Entry.h) beside
// installEntry and reinstallEntry: it leaves the staged copies alone and tells no observer. Frames
// meet the change from the next lookup on; a later reinstall writes over it.
//
// Refused, and then nothing changes: an id that the group does not know (UnknownEntry), an entry
// that is not in the hardware (NotInstalled), a qualifier or an action that the written copy does
// not have (NotFound) or the group cannot have (Unsupported).
//
// Threads: as for writing an entry (FieldProcessor/Group.h).
#pragma once

#include <FieldProcessor/Group.h>

namespace Chip {

class Drift {
 public:
   // The group must outlive the drift.
   explicit Drift( Group & group ) : group_( group ) {}

   // Inverts these bits of a qualifier's data; of DstPort those of the logical port.
   ResultCode dataFlips( U32 id, Qualifier qualifier, U32 bits = 1 );
   ResultCode maskIs( U32 id, Qualifier qualifier, U32 mask );
   // Inverts these bits of the number that an action carries.
   ResultCode numberFlips( U32 id, Action action, U32 bits = 1 );
   ResultCode egressMaskIs( U32 id, Brum::PerUnitBitmap const & ports );
   ResultCode priorityIs( U32 id, std::optional< U32 > const & priority );

   // Takes a qualifier, or an action, out of the entry.
   ResultCode remove( U32 id, Qualifier qualifier );
   ResultCode remove( U32 id, Action action );

   // Two entries exchange the gports that they match.
   ResultCode gportsSwap( U32 id, U32 other );

   // Takes the entry out of the hardware; it stays in the group, as staged.
   ResultCode erase( U32 id );
   // Takes the entry out of the group altogether.
   ResultCode destroy( U32 id ) { return group_.release( id ); }
   // One more entry that is written as this one; its id, or 0 when there is no such entry or no
   // room.
   U32 copy( U32 id );

 private:
   // Rewrites the written copy; `change` says whether it could.
   template< typename Change > ResultCode rewrite( U32 id, Change change );
   // Rewrites one qualifier or action of it.
   template< typename Part, typename Change >
   ResultCode rewritePart( U32 id, Part part, Change change );

   Group & group_;
};

}  // namespace Chip
