// The part of the module that the state machines use: their trace handle, "VornalEvpnSm", and the
// two log messages about the TCAM. The module initialisation creates them when the plug-in is
// loaded (VornalEvpnMounter/ModuleInit.cpp).
#pragma once

#include <Log/Log.h>
#include <Trace/Trace.h>

namespace Vornal {

extern Trace::Handle const smTrace;

extern Log::Handle const multihomingTcamResourceFull;
extern Log::Handle const multihomingTcamResourceRecovered;

}  // namespace Vornal
