#include <Lag/LagPhyIntfMappingSm.h>

#include <Kiv/Rows.h>

KIV_DEFINE( Lag::LagPhyIntfMappingSm )

namespace Lag {

LagPhyIntfMappingSm::LagPhyIntfMappingSm(
   Quelm::Ptr< Config const > const & lagConfig,
   Quelm::Ptr< LagPhyIntfMapping > const & lagPhyIntfMapping )
      : lagConfig_( lagConfig ), lagPhyIntfMapping_( lagPhyIntfMapping ) {}

LagPhyIntfMappingSm::~LagPhyIntfMappingSm() {
   hasNotificationActiveIs( false );
}

Quelm::Ptr< LagPhyIntfMappingSm > LagPhyIntfMappingSm::LagPhyIntfMappingSmIs(
   Quelm::Ptr< Config const > const & lagConfig,
   Quelm::Ptr< LagPhyIntfMapping > const & lagPhyIntfMapping ) {
   return Quelm::make< LagPhyIntfMappingSm >( lagConfig, lagPhyIntfMapping );
}

void LagPhyIntfMappingSm::handleDerivingBegins() {
   configWatch_.hasNotificationActiveIs( true );
   handlePhyIntfs();
}

void LagPhyIntfMappingSm::handleDerivingEnds() {
   configWatch_.hasNotificationActiveIs( false );
   phyIntf_.clear();
}

void LagPhyIntfMappingSm::handlePhyIntfs() {
   if ( !lagConfig() || !lagPhyIntfMapping() ) {
      return;
   }
   for ( auto lag = lagPhyIntfMapping()->lagPhyIntfConfigIter(); lag; ++lag ) {
      for ( auto member = lag.value()->phyIntfIter(); member; ++member ) {
         phyIntf_[ member.key() ].lag = lag.key();
      }
   }
   for ( auto iter = lagConfig()->phyIntfIter(); iter; ++iter ) {
      phyIntf_[ iter.key() ];
   }
   std::vector< Pelk::IntfId > known;
   for ( auto const & [ intfId, phyIntf ] : phyIntf_ ) {
      known.push_back( intfId );
   }
   for ( Pelk::IntfId const & intfId : known ) {
      handlePhyIntf( intfId );
   }
}

void LagPhyIntfMappingSm::handlePhyIntf( Pelk::IntfId const & intfId ) {
   if ( !lagPhyIntfMapping() || !isDeriving() ) {
      return;
   }
   watch( phyIntf_[ intfId ], lagConfig()->phyIntf( intfId ) );
   handleLag( intfId );
   if ( !lagConfig()->phyIntfHas( intfId ) ) {
      phyIntf_.erase( intfId );
   }
}

void LagPhyIntfMappingSm::handleLag( Pelk::IntfId const & intfId ) {
   auto const config = lagConfig()->phyIntf( intfId );
   Pelk::IntfId const lag = config ? config->lag() : Pelk::IntfId();
   Pelk::IntfId const previous = std::exchange( phyIntf_[ intfId ].lag, lag );
   if ( lag == previous ) {
      return;
   }
   if ( previous != Pelk::IntfId() ) {
      leave( previous, intfId );
   }
   if ( lag != Pelk::IntfId() ) {
      join( lag, intfId );
   }
}

void LagPhyIntfMappingSm::watch( PhyIntf & phyIntf,
                                 Quelm::Ptr< EthPhyIntfLagConfig const > const & config ) {
   if ( !config ) {
      phyIntf.watch.reset();
      return;
   }
   phyIntf.watch = std::make_unique< Kiv::Watch< EthPhyIntfLagConfig > >(
      config, [ this, intfId = config->intfId() ]( Kiv::Change const & ) { handleLag( intfId ); } );
   phyIntf.watch->hasNotificationActiveIs( true );
}

void LagPhyIntfMappingSm::leave( Pelk::IntfId const & lag, Pelk::IntfId const & intfId ) {
   auto const members = lagPhyIntfMapping()->lagPhyIntfConfig( lag );
   members->phyIntfDel( intfId );
   if ( members->phyIntfs() == 0 ) {
      lagPhyIntfMapping()->lagPhyIntfConfigDel( lag );
   }
}

void LagPhyIntfMappingSm::join( Pelk::IntfId const & lag, Pelk::IntfId const & intfId ) {
   lagPhyIntfMapping()->lagPhyIntfConfigIs( lag )->phyIntfIs( intfId );
}

}  // namespace Lag
