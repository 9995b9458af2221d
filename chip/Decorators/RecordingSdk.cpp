#include <Decorators/RecordingSdk.h>

#include <FieldProcessor/Fields.h>
#include <Shim/FieldCall.h>

namespace Chip {

namespace {

NamedValue valueAt( Shim::Call const & call, std::size_t position ) {
   U32 const number = call.values[ position ];
   std::string const name( rowOf( call.operation ).valueNames.at( position ) );
   std::optional< Action > const action = name == "action" ? actionOf( number ) : std::nullopt;
   return action ? NamedValue{ name, std::string( nameOf( *action ) ) }
                 : NamedValue{ name, number };
}

}  // namespace

S32 RecordingSdk::make( Shim::Call & call ) {
   HardwareCall event;
   event.operation = rowOf( call.operation ).name;
   event.callText = Shim::fieldCallUnderWay_ ? Shim::fieldCallUnderWay_->text : "";
   event.unit = call.unit;
   event.entry = call.entry;
   event.returnCode = SdkDecorator::make( call );
   for ( std::size_t n = 0; n < call.values.size(); ++n ) {
      event.values.push_back( valueAt( call, n ) );
   }
   observer_.callMade( event );
   return *event.returnCode;
}

}  // namespace Chip
