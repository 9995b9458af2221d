#include <Audit/TunnelHistory.h>

namespace Audit {

namespace {

void collect( Vxlan::VtiStatus const & tunnel, std::set< U32 > & vnis ) {
   for ( auto vrf = tunnel.vrfToVniMapIter(); vrf; ++vrf ) {
      vnis.insert( vrf.value().value() );
   }
}

}  // namespace

TunnelHistory::TunnelHistory( Quelm::Ptr< Vxlan::VtiStatusDir const > dir )
      : dir_( std::move( dir ) ), watch_( dir_, [ this ]( Kiv::Change const & change ) {
           using Tunnel = Quelm::Ptr< Vxlan::VtiStatus >;
           auto const * const before = change.oldValue< Tunnel >();
           if ( before && !change.newValue< Tunnel >() ) {
              handleGone( **before );
           }
        } ) {
   watch_.hasNotificationActiveIs( true );
}

void TunnelHistory::handleGone( Vxlan::VtiStatus const & gone ) {
   if ( gone.intfId() != Pelk::IntfId::fromString( "Vxlan1" ) ) {
      collect( gone, left_ );
      return;
   }
   left_.clear();
   for ( auto other = dir_->vtiStatusIter(); other; ++other ) {
      collect( *other.value(), freed_ );
   }
}

}  // namespace Audit
