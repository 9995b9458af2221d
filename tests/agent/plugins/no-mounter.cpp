// A shared object that is no plug-in: it registers no mounter.
#include <Trace/Trace.h>

namespace {

Trace::Handle const trace( "NoMounter" );

}  // namespace
