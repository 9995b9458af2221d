#include <Audit/GrantHistory.h>

namespace Audit {

using Pelk::IpGenAddr;

GrantHistory::GrantHistory( Quelm::Ptr< Requests const > const & requests,
                            Quelm::Ptr< Grants const > const & grants )
      : grants_( grants ),
        requestsWatch_( requests,
                        [ this ]( Kiv::Change const & change ) {
                           auto const & vtep = change.key< IpGenAddr >();
                           if ( grants_ && grants_->remoteESPeerVtepHas( vtep ) ) {
                              old_.insert( vtep );
                           }
                        } ),
        grantsWatch_( grants, [ this ]( Kiv::Change const & change ) {
           old_.erase( change.key< IpGenAddr >() );
        } ) {
   requestsWatch_.hasNotificationActiveIs( true );
   grantsWatch_.hasNotificationActiveIs( true );
}

}  // namespace Audit
