#include <Bridging/HwCapabilities.h>

#include <Kiv/Rows.h>

KIV_DEFINE_NAMED( Bridging::HwCapabilities )
