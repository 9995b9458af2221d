#include <Audit/Audit.h>

#include <algorithm>

#include <Audit/Comparison.h>

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

Report Auditor::report() const {
   auto const entities = finder_.roots();
   State state = stateOf( entities );
   state.leftVnis = tunnels_.leftVnis();
   state.freedVnis = tunnels_.freedVnis();
   for ( Pelk::IpGenAddr const & vtep : grants_.oldGrants() ) {
      state.classIds.erase( vtep );
   }
   U16 const lastUnit = state.modules.empty() ? U16{ 0 } : state.modules.rbegin()->first;
   return compare( state, recordsOf( entities, lastUnit ), units_ );
}

}  // namespace Audit
