#include <Shim/FieldCall.h>

#include <iostream>

namespace Shim {

Sdk * sdk_ = nullptr;
FieldCall const * fieldCallUnderWay_ = nullptr;

namespace {

Trace::Handle const apiTraceHandle( "ApiVornal" );

std::string placed( Quelm::SourcePlace const & place, char const * text ) {
   return std::string( place.file ) + ":" + std::to_string( place.line ) + " " + text;
}

}  // namespace

Trace::Handle const & apiTrace() {
   return apiTraceHandle;
}

void fieldCallFailed( Quelm::SourcePlace const & place, char const * text, S32 rc ) {
   std::string const line = placed( place, text ) + " API ERROR:" + sdk_->errorText( rc ) + " (" +
                            std::to_string( rc ) + ")\n";
   std::cerr << line << std::flush;
   sdk_->fieldCallFailed();
   Quelm::assertionFailed( place, "0" );
}

void traceFieldCall( Quelm::SourcePlace const & place, char const * text, S32 rc ) {
   apiTrace().line( 4, placed( place, text ) + " (rc:" + std::to_string( rc ) + ")" );
}

}  // namespace Shim
