#include <Audit/Audit.h>

#include <algorithm>

#include <Audit/Comparison.h>
#include <Audit/Matching.h>
#include <Audit/Records.h>

namespace Audit {

namespace {

// The first entity of type T, or an empty reference.
template< typename T >
Quelm::Ptr< T const > entityIn( StateDatabase::Directory::Entities const & entities ) {
   for ( auto const & [ path, entity ] : entities ) {
      if ( auto const typed = Quelm::dynamicCast< T const >( entity ) ) {
         return typed;
      }
   }
   return nullptr;
}

U16 lastUnitOf( State const & state ) {
   return state.modules.empty() ? U16{ 0 } : state.modules.rbegin()->first;
}

}  // namespace

U32 Report::faults() const {
   return static_cast< U32 >(
      std::count_if( differences.begin(), differences.end(),
                     []( Difference const & one ) { return !isKnown( one.kind ); } ) );
}

Auditor::Auditor( StateDatabase::Finder const & finder, Chip::Units const & units )
      : finder_( finder ),
        units_( units ),
        tunnels_( entityIn< Vxlan::VtiStatusDir >( finder.roots() ) ),
        grants_( entityIn< GrantHistory::Requests >( finder.roots() ),
                 entityIn< GrantHistory::Grants >( finder.roots() ) ) {}

State Auditor::state() const {
   State state = stateOf( finder_.roots() );
   state.leftVnis = tunnels_.leftVnis();
   state.freedVnis = tunnels_.freedVnis();
   for ( Pelk::IpGenAddr const & vtep : grants_.oldGrants() ) {
      state.classIds.erase( vtep );
   }
   return state;
}

Report Auditor::report() const {
   State const now = state();
   return compare( now, recordsOf( finder_.roots(), lastUnitOf( now ) ), units_ );
}

std::map< Chip::RuleKey, ExpectedEntry > Auditor::expectedEntries() const {
   State const now = state();
   WantedRules const wanted = wantedRules( now );
   Matched const matched = match( wanted, recordsOf( finder_.roots(), lastUnitOf( now ) ), units_ );
   std::map< Chip::RuleKey, ExpectedEntry > entries;
   for ( auto const & [ what, entry ] : matched.rules ) {
      entries[ { what.unit, what.group(), entry->id() } ] = { what, wanted.at( what ).because };
   }
   return entries;
}

}  // namespace Audit
