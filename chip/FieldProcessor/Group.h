// One field-processor group on one unit: its room, its entries, and the lookup.
//
// Room. A group has a capacity in entries. An entry takes its room when it is obtained, installed
// or not, and gives it back when it is released. Other users of the group can hold part of the
// capacity; they are a number only and match no frame.
//
// Lookup. Only written copies match. Of all written entries that match, one wins: the one
// of the highest priority, and between equals the one obtained first. An entry without a priority
// stands above every priority set explicitly. The answer is the winning entry, whose written copy
// has the actions; an entry without actions does nothing, but has won.
//
// Safe failures: a group that is full and an id that it does not know are answered as such and
// change nothing. There are no unsafe ones but asking a group for frames of the other kind, which
// is a failed assertion.
//
// Cost: that of the engine for a lookup (Lookup.h), which writes nothing; the list of all entries
// is sorted when it is asked for; constant for everything else.
//
// Threads: entries are obtained, written and released by holders of the activity lock, and looked
// up by holders of it. Field calls work on the staged copies, meanwhile, with the lock given up
// (Entry.h); while one is under way nothing but lookups may be done on the unit.
//
// Neighbours: Unit.h gives out the ids; the entry managers (Tcam/) and the SDK (SoftSdk/) are the
// ways in from outside; lookups are the packet pipeline's.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <FieldProcessor/Entry.h>
#include <FieldProcessor/Lookup.h>
#include <HashMap/HashMap.h>
#include <VornalTcam/EntryManager.h>

namespace Chip {

// Gives each entry of a unit a number of its own: from 1, never the same twice.
class EntryIds {
 public:
   U32 next() {
      QUELM_ASSERT( last_ + 1 != 0 && "entry ids used up" );
      return ++last_;
   }

 private:
   U32 last_ = 0;
};

class Group {
 public:
   // `ids` is the unit's and outlives the group.
   Group( Vornal::TcamGroupAssignment assignment, GroupKind kind, U32 capacity, EntryIds & ids,
          LookupEngine engine = LookupEngine::TupleSpace );
   Group( Group const & ) = delete;
   Group & operator=( Group const & ) = delete;
   ~Group() = default;

   Vornal::TcamGroupAssignment assignment() const { return assignment_; }
   GroupKind kind() const { return kind_; }

   // --- Room, in entries
   U32 capacity() const { return capacity_; }
   U32 used() const { return static_cast< U32 >( entries_.size() ); }
   U32 foreign() const { return foreign_; }
   U32 room() const { return capacity_ - used() - foreign_; }
   // Other users ask for `count` entries from now on. Returns how many they hold; it is less when
   // there is less room.
   U32 foreignIs( U32 count );

   // --- Entries
   // A new, empty entry; its id, or 0 when there is no room.
   U32 entryNew( std::string const & name );
   // Writes the staged copy to the hardware, also of an entry that is installed.
   ResultCode install( U32 id );
   // The same for installed entries only.
   ResultCode reinstall( U32 id );
   // Takes the entry out of the hardware and out of the group.
   ResultCode release( U32 id );

   // The entry, or nullptr.
   Entry * entry( U32 id );
   Entry const * entry( U32 id ) const;
   // All entries by id, which is the order in which they were obtained.
   std::vector< Entry const * > entries() const;

   // --- Lookup
   // The entry that wins, or nullptr. It has a written copy, and stays until it is released.
   Entry const * lookup( IngressFields const & frame ) const;
   Entry const * lookup( EgressFields const & frame ) const;

 private:
   friend class Drift;  // changes written copies and the lookup (Drift/Drift.h)

   void write( Entry & entry );

   Vornal::TcamGroupAssignment assignment_;
   GroupKind kind_;
   U32 capacity_;
   U32 foreign_ = 0;
   EntryIds & ids_;
   HashMap< U32, std::unique_ptr< Entry > > entries_;
   std::unique_ptr< Lookup > written_;
};

}  // namespace Chip
