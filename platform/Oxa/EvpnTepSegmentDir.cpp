#include <Oxa/EvpnTepSegmentDir.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Oxa::EvpnTepSegment )
KIV_DEFINE_NAMED( Oxa::EvpnTepSegmentDir )

namespace Oxa {

Quelm::Ptr< EvpnTepSegmentDir > evpnTepSegmentDirFactory( std::string const & name ) {
   return Quelm::make< EvpnTepSegmentDir >( name );
}

}  // namespace Oxa
