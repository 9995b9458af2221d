#include <Questions/Names.h>

#include <fmt/format.h>

#include <Audit/SharedSegments.h>
#include <Snapshot/RuleText.h>

namespace Questions {

Names::Names( Audit::State const & state ) {
   for ( auto const & [ vtep, virtualPort ] : state.virtualPorts ) {
      vteps_[ Chip::vxlanGportOf( vpIndexOf( state, vtep ) ) ] = "VTEP " + vtep.stringValue();
   }
   for ( auto const & [ intf, port ] : state.ports ) {
      if ( port.isValid() ) {
         interfaces_[ port ] = intf.stringValue();
      }
   }
}

std::string Names::operator()( Chip::Qualifier qualifier, U32 number ) const {
   if ( qualifier == Chip::Qualifier::SrcVxlanGport ) {
      auto const vtep = vteps_.find( number );
      return vtep == vteps_.end() ? "" : vtep->second;
   }
   return Chip::nameInChip( qualifier, number );
}

std::string Names::interfaceAt( VornalTypes::VornalPort const & port ) const {
   auto const interface = interfaces_.find( port );
   return interface == interfaces_.end()
             ? fmt::format( "unit {} port {}", port.unit(), port.logicalPort() )
             : interface->second;
}

}  // namespace Questions
