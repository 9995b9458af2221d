#include <VornalTcam/EntryManager.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Vornal::VornalTcamEntryManager )
KIV_DEFINE( Vornal::VornalUnboundedTcamEntryManager )
KIV_DEFINE( Vornal::VornalTcamGroupManager )
