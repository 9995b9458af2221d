#include <Kiv/Rows.h>
#include <VornalCentral/Capabilities.h>
#include <VornalCentral/I2EClassIdIndex.h>
#include <VornalCentral/VpIndexStatus.h>

KIV_DEFINE_NAMED( VornalCentral::VpIndexStatus )
KIV_DEFINE_NAMED( VornalCentral::VxlanCapabilities )
KIV_DEFINE_NAMED( VornalCentral::VornalAttributes )
KIV_DEFINE_NAMED( VornalCentral::I2EClassIdIndexConfig )
KIV_DEFINE_NAMED( VornalCentral::I2EClassIdIndexStatus )

namespace VornalCentral {

Quelm::Ptr< VornalAttributes > const & vornalAttributes() {
   static auto const attributes = Quelm::make< VornalAttributes >( "vornalAttributes" );
   return attributes;
}

}  // namespace VornalCentral
