#include <Questions/Names.h>

#include <fmt/format.h>

#include <Audit/SharedSegments.h>

namespace Questions {

Names::Names( Audit::State const & state ) : vteps_( Audit::vtepNamesIn( state ) ) {
   for ( auto const & [ intf, port ] : state.ports ) {
      if ( port.isValid() ) {
         interfaces_[ port ] = intf.stringValue();
      }
   }
}

std::string Names::interfaceAt( VornalTypes::VornalPort const & port ) const {
   auto const interface = interfaces_.find( port );
   return interface == interfaces_.end()
             ? fmt::format( "unit {} port {}", port.unit(), port.logicalPort() )
             : interface->second;
}

}  // namespace Questions
