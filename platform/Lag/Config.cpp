#include <Lag/Config.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Lag::EthPhyIntfLagConfig )
KIV_DEFINE_NAMED( Lag::Config )
KIV_DEFINE( Lag::LagPhyIntfConfig )
KIV_DEFINE_NAMED( Lag::LagPhyIntfMapping )
