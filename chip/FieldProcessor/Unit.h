// A unit: one forwarding chip of the switch, and all units together.
#pragma once

#include <map>

#include <FieldProcessor/Group.h>
#include <FieldProcessor/RuleKey.h>

namespace Chip {

class Unit {
 public:
   Unit( U16 number, U16 modId ) : number_( number ), modId_( modId ) {}
   Unit( Unit const & ) = delete;
   Unit & operator=( Unit const & ) = delete;
   ~Unit() = default;

   U16 number() const { return number_; }
   U16 modId() const { return modId_; }  // the unit's address on the fabric

   // Adds a group. That the unit has one of that assignment already is a failed assertion.
   void groupNew( Vornal::TcamGroupAssignment assignment, GroupKind kind, U32 capacity,
                  LookupEngine engine = LookupEngine::TupleSpace );

   // The group, or nullptr.
   Group * group( Vornal::TcamGroupAssignment assignment );
   std::map< Vornal::TcamGroupAssignment, Group > const & groups() const { return groups_; }

   // The entry of that id, in whichever group, or nullptr: field calls name no group.
   Entry * entry( U32 id );

 private:
   U16 number_;
   U16 modId_;
   EntryIds ids_;
   std::map< Vornal::TcamGroupAssignment, Group > groups_;
};

// The units by number.
class Units {
 public:
   // Adds a unit. That there is one of that number already is a failed assertion.
   Unit & unitNew( U16 number, U16 modId );

   // The unit, or nullptr.
   Unit * unit( U32 number );
   // The group of that unit, or nullptr.
   Group * group( U32 number, Vornal::TcamGroupAssignment assignment );

   // Calls `visit( RuleKey, Entry const & )` for each entry of all units, by unit, group and id.
   template< typename Visit > void forEachEntry( Visit visit ) const {
      for ( auto const & [ number, unit ] : units_ ) {
         for ( auto const & [ assignment, group ] : unit.groups() ) {
            for ( Entry const * const entry : group.entries() ) {
               visit( RuleKey{ unit.number(), assignment, entry->id() }, *entry );
            }
         }
      }
   }

   auto begin() const { return units_.begin(); }
   auto end() const { return units_.end(); }

 private:
   std::map< U32, Unit > units_;
};

}  // namespace Chip
