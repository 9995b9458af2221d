#include <Vxlan/VtiStatusDir.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Vxlan::VtiStatus )
KIV_DEFINE_NAMED( Vxlan::VtiStatusDir )
