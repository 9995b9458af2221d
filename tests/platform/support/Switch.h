// What the tests of the entity framework are told about: a switch, its ports, and a chassis that is
// a switch with more to it. Together they use every kind of attribute line.
#pragma once

#include <string>

#include <Kiv/Entity.h>

namespace Support {

class Port : public Kiv::Entity {
   KIV_ENTITY( Port, Kiv::Entity )
   KIV_KEY( number, U16 )
   KIV_VALUE( speed, U32 )

   explicit Port( U16 number ) : number_( number ) {}
};

// A port that cannot be made from its number alone.
class FabricPort : public Port {
   KIV_ENTITY( FabricPort, Port )
   KIV_VALUE( lane, U8 )

   FabricPort( U16 number, U8 lane ) : Port( number ) { laneIs( lane ); }
};

class Switch : public Kiv::NamedEntity {
   KIV_ENTITY( Switch, Kiv::NamedEntity )
   KIV_VALUE( mtu, U32 )
   KIV_VALUE( banner, std::string )
   KIV_REFERENCE( uplink, Port )
   KIV_HELD( console, Port )
   KIV_BACK( neighbour, Switch )
   KIV_SET( vlan, U16, vlans )
   KIV_COLLECTION( route, std::string, U32, routes )
   KIV_COLLECTION( note, U16, std::string )
   KIV_MEMBERS( port, U16, Port, ports )
   KIV_MEMBERS( fabricPort, U16, FabricPort )

   KIV_QUERY( U32, metric, ( std::string const & prefix ) )
   KIV_OVERLOAD( U32, metric, ( std::string const & prefix, U32 cost ) )
   KIV_OVERLOAD( U32, metric, () )
   KIV_OPERATION( void, shutdown, () )
   KIV_OPERATION( Quelm::Ptr< Port >, fastestPort, () )
   KIV_VIRTUAL( std::string, model, () )

   using NamedEntity::NamedEntity;

   void neighbourIs( Switch * neighbour ) { neighbour_ = neighbour; }
   void consoleIs( Quelm::Ptr< Port > const & console ) { consoleHeldIs( console ); }
};

class Chassis : public Switch {
   KIV_ENTITY( Chassis, Switch )
   KIV_COLLECTION( slotPower, U8, S32, slots )
   KIV_OPERATION( void, shutdown, ( U8 slot ) )

   using Switch::shutdown;
   using Switch::Switch;

   std::string model() override;
};

}  // namespace Support
