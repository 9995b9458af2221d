#include <Steps/DesignatedForwarder.h>

#include <fmt/format.h>

#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Steps/Context.h>

namespace Steps {

std::string DesignatedForwarder::shape() {
   namespace Shape = Scenario::Shape;
   return Shape::mappingOf( Shape::of( "segment-interface" ), Shape::of( "yes-or-no" ),
                            "Whether interfaces are the designated forwarder of their segment "
                            "from now on." );
}

void DesignatedForwarder::read( Reading & reading, Value const & value ) {
   for ( auto const & [ intf, about ] : keyedOf( reading, value, Scenario::intfIn ) ) {
      reading.agreement().designatedIs( intf, about.line );
      isDesignated[ intf ] = yesOrNoOf( reading, about ).value_or( true );
   }
}

std::string DesignatedForwarder::description() const {
   std::string text;
   for ( auto const & [ intf, is ] : isDesignated ) {
      text += fmt::format( "{}{} is {}designated", text.empty() ? "" : ", ", Quelm::textOf( intf ),
                           is ? "" : "not " );
   }
   return text;
}

void DesignatedForwarder::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] { context.traffic.designatedAre( isDesignated ); } );
}

}  // namespace Steps
