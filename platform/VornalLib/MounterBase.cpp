#include <VornalLib/MounterBase.h>

#include <Kiv/Rows.h>

KIV_DEFINE( VornalLib::MounterBase )
