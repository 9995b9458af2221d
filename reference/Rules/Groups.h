// The field-processor groups of all units: the rules that stand in them, how much room they have,
// and the calls that were made to them.
//
// A group has room for so many entries on each unit. Others hold some of them. A group that has
// refused an entry says that it is exhausted, until an entry comes free. Whoever waits for room
// looks again when that changes, unless every unit is exhausted.
//
// A call has a result: 0, or a negative code when it is refused. A rule that is not there, or lacks
// the part that is asked for, refuses; so does a fault of the chip. What follows from a result is
// its caller's.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <Rules/Drift.h>
#include <Rules/Faults.h>
#include <Rules/Rule.h>

namespace Reference {

using RuleId = std::optional< unsigned >;  // nothing: no rule

using Result = int;

// What was read back, if anything.
template< typename Value > struct ReadBack {
   Result result = 0;
   Value value{};
};

// A port is matched with its module.
struct PortMatch {
   Match module{ 0, 0 };
   Match port{ 0, 0 };
};

class Groups {
 public:
   explicit Groups( Device device ) : device_( std::move( device ) ) {}

   // --- Calls of the plug-in, in the order in which a rule is made
   // Nothing when the group is full.
   RuleId obtain( unsigned unit, Group group, std::string const & name );
   Result match( RuleId id, std::string const & qualifier, Match const & match );
   Result matchPort( RuleId id, unsigned module, unsigned port );
   Result addAction( RuleId id, std::string const & action, unsigned number );
   Result addMask( RuleId id, std::set< unsigned > const & ports );
   Result priorityIs( RuleId id, unsigned priority );
   Result install( RuleId id );
   // The mask of a rule in the chip changes.
   Result maskIs( RuleId id, std::set< unsigned > const & ports );
   Result reinstall( RuleId id );
   // Without an id, the call is made for entry 0, and does nothing.
   Result release( unsigned unit, Group group, RuleId id );

   // --- Calls that read the written copy back. Without an id, they are made for entry 0.
   ReadBack< Match > readMatch( unsigned unit, RuleId id, std::string const & qualifier );
   ReadBack< PortMatch > readPort( unsigned unit, RuleId id );
   ReadBack< unsigned > readAction( unsigned unit, RuleId id, std::string const & action );
   ReadBack< std::set< unsigned > > readMask( unsigned unit, RuleId id );

   // --- Others
   void fails( CallFails const & fault ) { faults_.add( fault ); }
   void fails( EntryIsRefused const & fault ) { faults_.add( fault ); }
   void drifts( RuleDrifts const & drift );  // in Drift.cpp, with its helpers
   void othersHold( Group group, std::optional< unsigned > unit, unsigned entries );

   // --- What there is
   std::map< unsigned, Rule > const & rules() const { return rules_; }
   unsigned unitOf( RuleId id ) const { return all_.at( *id ).unit; }
   bool hasRoom( unsigned unit, Group group ) const;
   // Room came or was refused in the ingress group since the last call, and some unit has room.
   bool isTimeToLookAgain();
   // The calls since the last call of this function.
   std::vector< Call > takeCalls() { return std::exchange( calls_, {} ); }

 private:
   using Place = std::pair< Group, unsigned >;  // and its unit
   using Values = std::map< std::string, std::string >;

   unsigned entriesOf( Place const & place ) const;
   void exhaustedIs( Place const & place, bool exhausted );
   // The rule that a call is for; without an id, that of entry 0, which there is not.
   struct Target {
      unsigned unit;
      RuleId id;
   };
   Target targetOf( RuleId id ) const;
   RuleId add( unsigned unit, Group group, std::string const & name );
   unsigned idOf( Group group, unsigned unit, RuleNamed const & named ) const;
   void meets( unsigned id, Fate fate );
   std::string nameOf( RuleId id ) const;
   template< typename Work >
   Result call( std::string const & operation, Target const & target, Values const & values,
                Work const & work );
   template< typename Work >
   Result callOfManager( std::string const & operation, RuleId id, Values values,
                         Work const & work );

   Device device_;
   std::map< unsigned, Rule > rules_;
   // Of every rule that there was: where, and its name.
   std::map< unsigned, Rule > all_;
   std::map< unsigned, unsigned > lastEntry_;  // by unit
   Faults faults_;
   std::map< Place, unsigned > others_;
   std::set< Place > exhausted_;
   bool isToLookAgain_ = false;
   std::vector< Call > calls_;
};

}  // namespace Reference
