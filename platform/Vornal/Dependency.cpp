#include <Vornal/Dependency.h>

#include <Kiv/Rows.h>

KIV_DEFINE_NAMED( Vornal::DependencyPoint )
KIV_DEFINE( Vornal::DependencySet )
KIV_DEFINE_NAMED( Vornal::SubAgentDependencyPoints )
KIV_DEFINE( Vornal::VornalSliceDependencyPoints )

namespace Vornal {

VornalSliceDependencyPoints::VornalSliceDependencyPoints() {
   evpnDependencyPoint_ = Quelm::make< DependencyPoint >( "evpn" );
}

bool VornalSliceDependencyPoints::isReady( std::string const & name ) const {
   if ( name == evpnDependencyPoint()->name() ) {
      return evpnDependencyPoint()->isReady();
   }
   std::string const group = "subagents::";
   return name.starts_with( group ) && subAgentDependencyPoints() &&
          subAgentDependencyPoints()->readyHas( name.substr( group.size() ) );
}

bool areAllDependenciesReady_( Trace::Handle const & trace, char const * caller,
                               Quelm::Ptr< DependencySet const > const & set,
                               char const * const * names ) {
   for ( ; *names; ++names ) {
      if ( !set || !set->isReady( *names ) ) {
         TRACE( trace, 7, caller << " waits for " << *names );
         return false;
      }
   }
   return static_cast< bool >( set );
}

}  // namespace Vornal
