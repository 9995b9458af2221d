// The field-processor groups of all units: the rules that stand in them, how much room they have,
// and the calls that were made to them.
//
// A group has room for so many entries on each unit. Others hold some of them. A group that has
// refused an entry says that it is exhausted, until an entry comes free. Whoever waits for room
// looks again when that changes, unless every unit is exhausted.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <Rules/Rule.h>

namespace Reference {

using RuleId = std::optional< unsigned >;  // nothing: no rule

class Groups {
 public:
   explicit Groups( Device device ) : device_( std::move( device ) ) {}

   // --- Calls of the plug-in, in the order in which a rule is made
   // Nothing when the group is full.
   RuleId obtain( unsigned unit, Group group, std::string const & name );
   void match( RuleId id, std::string const & qualifier, unsigned data, unsigned mask );
   void matchPort( RuleId id, unsigned module, unsigned port );
   void addAction( RuleId id, std::string const & action, unsigned number );
   void addMask( RuleId id, std::set< unsigned > const & ports );
   void priorityIs( RuleId id, unsigned priority );
   void install( RuleId id );
   // The mask of a rule in the chip changes.
   void maskIs( RuleId id, std::set< unsigned > const & ports );
   // Without an id, the call is made for entry 0, and does nothing.
   void release( unsigned unit, Group group, RuleId id );

   // --- Others
   void othersHold( Group group, std::optional< unsigned > unit, unsigned entries );

   // --- What there is
   std::map< unsigned, Rule > const & rules() const { return rules_; }
   bool hasRoom( unsigned unit, Group group ) const;
   // Room came or was refused in the ingress group since the last call, and some unit has room.
   bool isTimeToLookAgain();
   // The calls since the last call of this function.
   std::vector< Call > takeCalls() { return std::exchange( calls_, {} ); }

 private:
   using Place = std::pair< Group, unsigned >;  // and its unit

   unsigned entriesOf( Place const & place ) const;
   void exhaustedIs( Place const & place, bool exhausted );
   void call( char const * operation, Rule const & rule,
              std::map< std::string, std::string > values );

   Device device_;
   std::map< unsigned, Rule > rules_;
   unsigned lastId_ = 0;
   std::map< Place, unsigned > others_;
   std::set< Place > exhausted_;
   bool isToLookAgain_ = false;
   std::vector< Call > calls_;
};

// "3 4 10"
std::string textOf( std::set< unsigned > const & ports );

}  // namespace Reference
