// Port channels (LAGs): which physical interface belongs to which, and the same turned round.
#pragma once

#include <Kiv/Entity.h>
#include <Pelk/IntfId.h>

namespace Lag {

// The membership of one physical interface.
class EthPhyIntfLagConfig : public Kiv::Entity {
   KIV_ENTITY( EthPhyIntfLagConfig, Kiv::Entity )
   KIV_KEY( intfId, Pelk::IntfId )
   KIV_VALUE( lag, Pelk::IntfId )  // the port channel; empty when the interface is in none

   explicit EthPhyIntfLagConfig( Pelk::IntfId const & intfId ) : intfId_( intfId ) {}
};

class Config : public Kiv::NamedEntity {
   KIV_ENTITY( Config, Kiv::NamedEntity )
   KIV_MEMBERS( phyIntf, Pelk::IntfId, EthPhyIntfLagConfig )

   using NamedEntity::NamedEntity;
};

// The members of one port channel.
class LagPhyIntfConfig : public Kiv::Entity {
   KIV_ENTITY( LagPhyIntfConfig, Kiv::Entity )
   KIV_KEY( intfId, Pelk::IntfId )
   KIV_SET( phyIntf, Pelk::IntfId, phyIntfs )

   explicit LagPhyIntfConfig( Pelk::IntfId const & intfId ) : intfId_( intfId ) {}
};

// Every port channel that has members.
class LagPhyIntfMapping : public Kiv::NamedEntity {
   KIV_ENTITY( LagPhyIntfMapping, Kiv::NamedEntity )
   KIV_MEMBERS( lagPhyIntfConfig, Pelk::IntfId, LagPhyIntfConfig )

   using NamedEntity::NamedEntity;
};

}  // namespace Lag
