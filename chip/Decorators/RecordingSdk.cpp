#include <Decorators/RecordingSdk.h>

#include <Shim/FieldCall.h>

namespace Chip {

namespace {

NamedValue kept( SdkValue const & seen ) {
   if ( U32 const * const number = std::get_if< U32 >( &seen.value ) ) {
      return { std::string( seen.name ), *number };
   }
   return { std::string( seen.name ), std::string( std::get< std::string_view >( seen.value ) ) };
}

}  // namespace

void RecordingSdk::done( SdkCall const & call ) {
   HardwareCall event;
   event.operation = call.operation;
   event.callText = Shim::fieldCallUnderWay_ ? Shim::fieldCallUnderWay_->text : "";
   event.unit = call.unit;
   event.entry = call.entry;
   for ( SdkValue const & value : call.values ) {
      event.values.push_back( kept( value ) );
   }
   event.returnCode = call.rc;
   observer_.callMade( event );
}

}  // namespace Chip
