// Derives the member mapping of port channels from the membership of physical interfaces.
//
// The configuration says, per physical interface, which port channel it is in; the mapping says,
// per port channel, which interfaces are in it. Its readers rely on the order of the changes:
//
// - a port channel enters the mapping empty, and its first member joins after that;
// - its last member leaves, and the port channel goes after that;
// - an interface that moves between port channels leaves the old one before it joins the new one.
//
// While its notifications are active the mapping is in sync; switching them on brings it into sync
// first. Switching them off, and destroying this object, leaves the mapping as it is: an agent that
// restarts must not see every port channel fall apart. Out of service it derives as little as when
// it is switched off. Without a configuration or a mapping nothing is derived.
//
// Cost: one look-up per changed interface. Threads: the activity's.
#pragma once

#include <map>
#include <memory>

#include <Kiv/Derivation.h>
#include <Lag/Config.h>

namespace Lag {

class LagPhyIntfMappingSm : public Kiv::Derivation {
   KIV_ENTITY( LagPhyIntfMappingSm, Kiv::Entity )
   KIV_HELD( lagConfig, Config const )
   KIV_HELD( lagPhyIntfMapping, LagPhyIntfMapping )

   LagPhyIntfMappingSm( Quelm::Ptr< Config const > const & lagConfig,
                        Quelm::Ptr< LagPhyIntfMapping > const & lagPhyIntfMapping );
   ~LagPhyIntfMappingSm() override;

   // Builds one; the caller switches its notifications on.
   static Quelm::Ptr< LagPhyIntfMappingSm > LagPhyIntfMappingSmIs(
      Quelm::Ptr< Config const > const & lagConfig,
      Quelm::Ptr< LagPhyIntfMapping > const & lagPhyIntfMapping );

 private:
   // One physical interface of the configuration.
   struct PhyIntf {
      std::unique_ptr< Kiv::Watch< EthPhyIntfLagConfig > > watch;
      Pelk::IntfId lag;  // the port channel it is a member of in the mapping
   };

   void handleDerivingBegins() override;
   void handleDerivingEnds() override;
   void handlePhyIntfs();
   void handlePhyIntf( Pelk::IntfId const & intfId );
   void handleLag( Pelk::IntfId const & intfId );
   void watch( PhyIntf & phyIntf, Quelm::Ptr< EthPhyIntfLagConfig const > const & config );
   void leave( Pelk::IntfId const & lag, Pelk::IntfId const & intfId );
   void join( Pelk::IntfId const & lag, Pelk::IntfId const & intfId );

   Kiv::Watch< Config > configWatch_{ lagConfig(), Kiv::onKey( Config::phyIntfAttr(), this,
                                                               &KivSelf::handlePhyIntf ) };
   std::map< Pelk::IntfId, PhyIntf > phyIntf_;
};

}  // namespace Lag
