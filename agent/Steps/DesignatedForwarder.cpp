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
                            "from now on.",
                            R"({"minProperties": 1})" );
}

void DesignatedForwarder::read( Reading & reading, Value const & value ) {
   if ( value.node.IsMap() && value.node.size() == 0 ) {
      reading.problem( value.line,
                       "designated-forwarder is empty; give one interface at least, as in "
                       "'Ethernet1: false'" );
   }
   for ( auto const & [ intf, about ] : keyedOf( reading, value, Scenario::intfIn ) ) {
      reading.agreement().designatedIs( intf, about.line );
      isDesignated[ intf ] = yesOrNoOf( reading, about ).value_or( true );
   }
}

std::string DesignatedForwarder::description() const {
   std::string text;
   for ( auto const & [ intf, isForwarder ] : isDesignated ) {
      text += fmt::format( "{}{} is {}designated", text.empty() ? "" : ", ", Quelm::textOf( intf ),
                           isForwarder ? "" : "not " );
   }
   return text;
}

void DesignatedForwarder::queue( Context const & context, int line ) const {
   context.turnNew( line,
                    [ this, &context ] { context.traffic.designateForwarders( isDesignated ); } );
}

}  // namespace Steps
