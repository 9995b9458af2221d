#include <Evpn/EvpnStatus.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Evpn::EthernetSegmentStatus )
KIV_DEFINE_NAMED( Evpn::EvpnStatus )
