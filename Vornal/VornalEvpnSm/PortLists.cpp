#include <VornalEvpnSm/PortLists.h>

#include <Kiv/ValueRows.h>

KIV_DEFINE_VALUE( Vornal::SharedESPortInfo )
KIV_DEFINE_VALUE( Vornal::PortListsOnUpdate )

namespace Vornal {

SharedESPortInfo::SharedESPortInfo( char const * begin, char const * end )
      : SharedESPortInfo( Quelm::fromText< SharedESPortInfo >( { begin, end } ) ) {}

PortListsOnUpdate::PortListsOnUpdate( char const * begin, char const * end )
      : PortListsOnUpdate( Quelm::fromText< PortListsOnUpdate >( { begin, end } ) ) {}

}  // namespace Vornal
