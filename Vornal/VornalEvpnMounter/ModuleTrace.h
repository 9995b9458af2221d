// The trace handle of the mounter and the dependency waiter: "VornalEvpnMounter".
#pragma once

#include <Trace/Trace.h>

namespace Vornal {

extern Trace::Handle const mounterTrace;

}  // namespace Vornal
