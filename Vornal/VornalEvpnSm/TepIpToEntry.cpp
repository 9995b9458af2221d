#include <VornalEvpnSm/TepIpToEntry.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Vornal::ESPortAndEFPEntryIdList )
KIV_DEFINE( Vornal::TepIpToEntry )
