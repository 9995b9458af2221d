// The physical interfaces of a switch and the member mapping of its port channels.
#pragma once

#include <vector>

#include <Lag/LagPhyIntfMappingSm.h>

#include "Derived.h"

namespace Support {

using LagDerived =
   Derived< Lag::LagPhyIntfMappingSm, Lag::LagPhyIntfMapping, Lag::LagPhyIntfConfig >;

class PortChannels : public LagDerived {
 public:
   using Sm = Lag::LagPhyIntfMappingSm;
   using Directory = Lag::LagPhyIntfMapping;

   PortChannels()
         : LagDerived( Quelm::make< Directory >( "mapping" ), Directory::lagPhyIntfConfigAttr(),
                       []( Lag::LagPhyIntfConfig const & lag ) {
                          return keysOf( lag.phyIntfIter() );
                       } ) {}

   static Pelk::IntfId intf( std::string const & name ) { return Pelk::IntfId::fromString( name ); }

   // From now on the interface is in that port channel; in none when the name is empty.
   void lagIs( std::string const & name, std::string const & lag ) {
      config->phyIntfIs( intf( name ) )->lagIs( intf( lag ) );
   }
   void interfaceDel( std::string const & name ) { config->phyIntfDel( intf( name ) ); }
   // Another object for the interface, with that membership.
   Quelm::Ptr< Lag::EthPhyIntfLagConfig > interfaceReplaced( std::string const & name,
                                                             std::string const & lag ) {
      auto const entity = Quelm::make< Lag::EthPhyIntfLagConfig >( intf( name ) );
      entity->lagIs( intf( lag ) );
      config->phyIntfIs( entity );
      return entity;
   }

   Quelm::Ptr< Sm > smNew() override { return Sm::LagPhyIntfMappingSmIs( config, directory ); }
   Table held() const override {
      Table table;
      for ( auto lag = directory->lagPhyIntfConfigIter(); lag; ++lag ) {
         auto & members = table[ lag.key().stringValue() ];
         for ( auto iter = lag.value()->phyIntfIter(); iter; ++iter ) {
            members.insert( iter.key().stringValue() );
         }
      }
      return table;
   }

   // --- For the tests of all derivations
   std::vector< Quelm::Ptr< Sm > > smsWithoutInputs() {
      return { Sm::LagPhyIntfMappingSmIs( nullptr, directory ),
               Sm::LagPhyIntfMappingSmIs( config, nullptr ),
               Sm::LagPhyIntfMappingSmIs( nullptr, nullptr ) };
   }
   void publishFirst() {
      lagIs( "Ethernet1", "Port-Channel1" );
      lagIs( "Ethernet2", "Port-Channel1" );
   }
   static std::string firstState() { return "Port-Channel1{Ethernet1 Ethernet2}"; }
   void publishSecond() {
      lagIs( "Ethernet1", "Port-Channel2" );
      lagIs( "Ethernet3", "Port-Channel1" );
      interfaceDel( "Ethernet2" );
   }
   static std::string secondState() { return "Port-Channel1{Ethernet3}Port-Channel2{Ethernet1}"; }
   void publishThird() { lagIs( "Ethernet3", "" ); }
   static std::string thirdState() { return "Port-Channel2{Ethernet1}"; }
   // The first state when a reader ends the derivation with the first change: the interface that
   // was on its way in still joins.
   static std::string cutShortState() { return "Port-Channel1{Ethernet1}"; }
   void clearDirectory() { directory->lagPhyIntfConfigDelAll(); }
   // The subscribers of everything that is published.
   std::size_t subscribers() const {
      std::size_t count = config->publisher().subscribers();
      for ( auto iter = config->phyIntfIter(); iter; ++iter ) {
         count += iter.value()->publisher().subscribers();
      }
      return count;
   }
   // One of any edits.
   void edit( int kind, int first, int second ) {
      std::string const name = "Ethernet" + std::to_string( first );
      std::string const lag = second == 0 ? "" : "Port-Channel" + std::to_string( second );
      switch ( kind ) {
      case 0: interfaceDel( name ); break;
      case 1: interfaceReplaced( name, lag ); break;
      default: lagIs( name, lag ); break;
      }
   }
   // The mapping that the configuration asks for.
   Table computed() const {
      Table table;
      for ( auto iter = config->phyIntfIter(); iter; ++iter ) {
         if ( !iter.value()->lag().isEmpty() ) {
            table[ iter.value()->lag().stringValue() ].insert( iter.key().stringValue() );
         }
      }
      return table;
   }

   Quelm::Ptr< Lag::Config > config = Quelm::make< Lag::Config >( "config" );
};

}  // namespace Support
