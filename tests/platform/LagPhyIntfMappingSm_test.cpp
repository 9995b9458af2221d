// The member mapping of port channels follows the membership of the physical interfaces, in an
// order that its readers rely on, and stays as it is when nobody derives it any more.
#include <gtest/gtest.h>

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include <rapidcheck/gtest.h>

#include <Lag/LagPhyIntfMappingSm.h>

#include "support/FamilyScribe.h"

namespace LagPhyIntfMappingSmTest {

using Lag::Config;
using Lag::EthPhyIntfLagConfig;
using Lag::LagPhyIntfConfig;
using Lag::LagPhyIntfMapping;
using Lag::LagPhyIntfMappingSm;
using Pelk::IntfId;
using Quelm::Ptr;
using Support::Journal;

IntfId intf( std::string const & name ) {
   return IntfId::fromString( name );
}

IntfId const et1 = intf( "Ethernet1" );
IntfId const et2 = intf( "Ethernet2" );
IntfId const et3 = intf( "Ethernet3" );
IntfId const po1 = intf( "Port-Channel1" );
IntfId const po2 = intf( "Port-Channel2" );
IntfId const noLag;

class LagMapping : public testing::Test {
 protected:
   // From now on every interface named is in that port channel.
   void lagIs( IntfId const & intfId, IntfId const & lag ) {
      config->phyIntfIs( intfId )->lagIs( lag );
   }
   Ptr< LagPhyIntfMappingSm > derived() {
      auto const sm = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( config, mapping );
      sm->hasNotificationActiveIs( true );
      return sm;
   }
   // The whole mapping as text.
   std::string state() {
      std::string text;
      for ( auto iter = mapping->lagPhyIntfConfigIter(); iter; ++iter ) {
         text +=
            iter.key().shortName() + "{" + Support::keysOf( iter.value()->phyIntfIter() ) + "}";
      }
      return text;
   }
   Journal news() { return std::exchange( seen, {} ); }

   Ptr< Config > config = Quelm::make< Config >( "config" );
   Ptr< LagPhyIntfMapping > mapping = Quelm::make< LagPhyIntfMapping >( "mapping" );
   Journal seen;
   Support::FamilyScribe< LagPhyIntfMapping, LagPhyIntfConfig > scribe{
      mapping, LagPhyIntfMapping::lagPhyIntfConfigAttr(), seen,
      []( LagPhyIntfConfig const & lag ) { return Support::keysOf( lag.phyIntfIter() ); }
   };
};

TEST_F( LagMapping, creatorLeavesTheNotificationsToItsCaller ) {
   lagIs( et1, po1 );
   auto const sm = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( config, mapping );
   EXPECT_FALSE( sm->hasNotificationActive() );
   EXPECT_EQ( sm->lagConfig(), config );
   EXPECT_EQ( sm->lagPhyIntfMapping(), mapping );
   EXPECT_EQ( state(), "" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "Po1{Ethernet1}" );
}

TEST_F( LagMapping, portChannelEntersEmptyAndItsFirstMemberJoinsAfterThat ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   EXPECT_EQ( news(), ( Journal{ "mapping lagPhyIntfConfig[Port-Channel1]: absent -> "
                                 "Lag::LagPhyIntfConfig Port-Channel1 {}",
                                 "Port-Channel1 phyIntf[Ethernet1]: absent -> present" } ) );
}

TEST_F( LagMapping, furtherMembersJoinWhatIsThere ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   auto const entity = mapping->lagPhyIntfConfig( po1 );
   news();
   lagIs( et2, po1 );
   EXPECT_EQ( news(), Journal{ "Port-Channel1 phyIntf[Ethernet2]: absent -> present" } );
   EXPECT_EQ( mapping->lagPhyIntfConfig( po1 ), entity );
}

TEST_F( LagMapping, lastMemberLeavesAndThePortChannelGoesAfterThat ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   lagIs( et2, po1 );
   news();
   lagIs( et1, noLag );
   EXPECT_EQ( news(), Journal{ "Port-Channel1 phyIntf[Ethernet1]: present -> absent" } );
   lagIs( et2, noLag );
   EXPECT_EQ( news(), ( Journal{ "Port-Channel1 phyIntf[Ethernet2]: present -> absent",
                                 "mapping lagPhyIntfConfig[Port-Channel1]: Lag::LagPhyIntfConfig "
                                 "Port-Channel1 -> absent" } ) );
}

TEST_F( LagMapping, memberThatMovesLeavesBeforeItJoins ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   news();
   lagIs( et1, po2 );
   EXPECT_EQ( news(), ( Journal{ "Port-Channel1 phyIntf[Ethernet1]: present -> absent",
                                 "mapping lagPhyIntfConfig[Port-Channel1]: Lag::LagPhyIntfConfig "
                                 "Port-Channel1 -> absent",
                                 "mapping lagPhyIntfConfig[Port-Channel2]: absent -> "
                                 "Lag::LagPhyIntfConfig Port-Channel2 {}",
                                 "Port-Channel2 phyIntf[Ethernet1]: absent -> present" } ) );
}

TEST_F( LagMapping, interfaceThatIsTakenOutOfTheConfigurationLeaves ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   lagIs( et2, po1 );
   config->phyIntfDel( et1 );
   EXPECT_EQ( state(), "Po1{Ethernet2}" );
   config->phyIntfDel( et2 );
   EXPECT_EQ( state(), "" );
}

TEST_F( LagMapping, interfaceThatEntersWithAMembershipJoins ) {
   auto const sm = derived();
   auto const entity = Quelm::make< EthPhyIntfLagConfig >( et1 );
   entity->lagIs( po1 );
   config->phyIntfIs( entity );
   EXPECT_EQ( state(), "Po1{Ethernet1}" );
}

TEST_F( LagMapping, interfaceReplacedByAnotherObjectMovesAndTheOldObjectIsForgotten ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   auto const old = config->phyIntf( et1 );
   auto const entity = Quelm::make< EthPhyIntfLagConfig >( et1 );
   entity->lagIs( po2 );
   config->phyIntfIs( entity );
   EXPECT_EQ( state(), "Po2{Ethernet1}" );
   news();
   old->lagIs( noLag );
   old->lagIs( po1 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( old->publisher().subscribers(), 0U );
}

TEST_F( LagMapping, replacedByAnEqualObjectNothingChangesAndTheNewOneIsFollowed ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   news();
   auto const entity = Quelm::make< EthPhyIntfLagConfig >( et1 );
   entity->lagIs( po1 );
   config->phyIntfIs( entity );
   EXPECT_EQ( news(), Journal{} );
   entity->lagIs( po2 );
   EXPECT_EQ( state(), "Po2{Ethernet1}" );
}

TEST_F( LagMapping, interfaceInNoPortChannelIsInNoEntry ) {
   auto const sm = derived();
   config->phyIntfIs( et1 );
   lagIs( et2, noLag );
   EXPECT_EQ( news(), Journal{} );
}

TEST_F( LagMapping, mappingStaysWhenSwitchedOff ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   sm->hasNotificationActiveIs( false );
   news();
   lagIs( et1, po2 );
   lagIs( et2, po2 );
   config->phyIntfDel( et1 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( state(), "Po1{Ethernet1}" );
}

TEST_F( LagMapping, mappingStaysWhenItsDerivationIsDestroyed ) {
   auto sm = derived();
   lagIs( et1, po1 );
   news();
   sm = nullptr;
   lagIs( et2, po1 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( state(), "Po1{Ethernet1}" );
   EXPECT_EQ( config->publisher().subscribers(), 0U );
   EXPECT_EQ( config->phyIntf( et1 )->publisher().subscribers(), 0U );
}

TEST_F( LagMapping, switchingOnBringsItIntoStep ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   lagIs( et2, po1 );
   sm->hasNotificationActiveIs( false );
   lagIs( et1, po2 );
   lagIs( et3, po1 );
   config->phyIntfDel( et2 );
   news();
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "Po1{Ethernet3}Po2{Ethernet1}" );
   lagIs( et3, noLag );
   EXPECT_EQ( state(), "Po2{Ethernet1}" );
}

TEST_F( LagMapping, staysWhenItsDerivationIsOutOfServiceAndIsBroughtIntoStepAfterwards ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   lagIs( et2, po1 );
   sm->kivDoZombieReactors( true );
   news();
   lagIs( et1, po2 );
   lagIs( et3, po1 );
   config->phyIntfDel( et2 );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( state(), "Po1{Ethernet1 Ethernet2}" );
   sm->kivDoZombieReactors( false );
   EXPECT_EQ( state(), "Po1{Ethernet3}Po2{Ethernet1}" );
   lagIs( et3, noLag );
   EXPECT_EQ( state(), "Po2{Ethernet1}" );
}

TEST_F( LagMapping, isDerivedOnlyByADerivationThatIsBothSwitchedOnAndInService ) {
   auto const sm = derived();
   sm->kivDoZombieReactors( true );
   sm->hasNotificationActiveIs( false );
   sm->hasNotificationActiveIs( true );
   lagIs( et1, po1 );
   EXPECT_EQ( state(), "" );
   sm->hasNotificationActiveIs( false );
   sm->kivDoZombieReactors( false );
   EXPECT_EQ( state(), "" );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "Po1{Ethernet1}" );
}

// A reader of the mapping ends the derivation as soon as the first port channel has entered. The
// interface that was on its way in still joins, and no other.
TEST_F( LagMapping, isLeftAloneFromTheMomentThatAReaderEndsItsDerivation ) {
   lagIs( et1, po1 );
   lagIs( et2, po1 );
   lagIs( et3, po2 );
   auto const sm = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( config, mapping );
   Kiv::Watch< LagPhyIntfMapping > reader( mapping, [ & ]( Kiv::Change const & ) {
      sm->kivDoZombieReactors( true );
   } );
   reader.hasNotificationActiveIs( true );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( state(), "Po1{Ethernet1}" );
   for ( IntfId const & intfId : { et1, et2, et3 } ) {
      EXPECT_EQ( config->phyIntf( intfId )->publisher().subscribers(), 0U ) << intfId;
   }
}

TEST_F( LagMapping, switchingOnWithNothingMissedChangesNothing ) {
   auto const sm = derived();
   lagIs( et1, po1 );
   news();
   sm->hasNotificationActiveIs( true );
   sm->hasNotificationActiveIs( false );
   sm->hasNotificationActiveIs( true );
   EXPECT_EQ( news(), Journal{} );
   EXPECT_EQ( config->phyIntf( et1 )->publisher().subscribers(), 1U );
}

TEST_F( LagMapping, anotherDerivationTakesOverWhatTheFirstLeft ) {
   derived()->hasNotificationActiveIs( true );
   lagIs( et1, po1 );
   auto first = derived();
   first = nullptr;
   news();
   auto const second = derived();
   EXPECT_EQ( news(), Journal{} );
   lagIs( et1, noLag );
   EXPECT_EQ( state(), "" );
}

TEST_F( LagMapping, missingInputsDeriveNothing ) {
   auto const withoutConfig = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( nullptr, mapping );
   auto const withoutMapping = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( config, nullptr );
   auto const withoutAny = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( nullptr, nullptr );
   for ( auto const & sm : { withoutConfig, withoutMapping, withoutAny } ) {
      sm->hasNotificationActiveIs( true );
   }
   lagIs( et1, po1 );
   config->phyIntfDel( et1 );
   for ( auto const & sm : { withoutConfig, withoutMapping, withoutAny } ) {
      sm->hasNotificationActiveIs( false );
   }
   EXPECT_EQ( news(), Journal{} );
}

// --- Any edits

struct Edit {
   enum Kind {
      SetLag,
      Delete,
      Replace,
      SwitchOff,
      SwitchOn,
      OutOfService,
      InService,
      Rebuild
   } kind;
   int phyIntf;
   int lag;
};

std::ostream & operator<<( std::ostream & out, Edit const & edit ) {
   static char const * const name[] = { "SetLag",   "Delete",       "Replace",   "SwitchOff",
                                        "SwitchOn", "OutOfService", "InService", "Rebuild" };
   return out << name[ edit.kind ] << " et" << edit.phyIntf << " po" << edit.lag;
}

rc::Gen< std::vector< Edit > > anyEdits() {
   auto const kind = rc::gen::weightedElement< Edit::Kind >( { { 8, Edit::SetLag },
                                                               { 3, Edit::Delete },
                                                               { 3, Edit::Replace },
                                                               { 1, Edit::SwitchOff },
                                                               { 2, Edit::SwitchOn },
                                                               { 1, Edit::OutOfService },
                                                               { 2, Edit::InService },
                                                               { 1, Edit::Rebuild } } );
   return rc::gen::container< std::vector< Edit > >(
      rc::gen::construct< Edit >( kind, rc::gen::inRange( 0, 5 ), rc::gen::inRange( 0, 4 ) ) );
}

using Members = std::map< IntfId, std::set< IntfId > >;

Members computed( Config const & config ) {
   Members members;
   for ( auto iter = config.phyIntfIter(); iter; ++iter ) {
      if ( !iter.value()->lag().isEmpty() ) {
         members[ iter.value()->lag() ].insert( iter.key() );
      }
   }
   return members;
}

Members held( LagPhyIntfMapping const & mapping ) {
   Members members;
   for ( auto lag = mapping.lagPhyIntfConfigIter(); lag; ++lag ) {
      members[ lag.key() ];
      for ( auto iter = lag.value()->phyIntfIter(); iter; ++iter ) {
         members[ lag.key() ].insert( iter.key() );
      }
   }
   return members;
}

void apply( Edit const & edit, Config & config, Ptr< LagPhyIntfMapping > const & mapping,
            Ptr< LagPhyIntfMappingSm > & sm ) {
   IntfId const phyIntf = intf( "Ethernet" + std::to_string( edit.phyIntf ) );
   IntfId const lag = edit.lag == 0 ? noLag : intf( "Port-Channel" + std::to_string( edit.lag ) );
   switch ( edit.kind ) {
   case Edit::SetLag: config.phyIntfIs( phyIntf )->lagIs( lag ); break;
   case Edit::Delete: config.phyIntfDel( phyIntf ); break;
   case Edit::Replace: {
      auto const entity = Quelm::make< EthPhyIntfLagConfig >( phyIntf );
      entity->lagIs( lag );
      config.phyIntfIs( entity );
      break;
   }
   case Edit::SwitchOff: sm->hasNotificationActiveIs( false ); break;
   case Edit::SwitchOn: sm->hasNotificationActiveIs( true ); break;
   case Edit::OutOfService: sm->kivDoZombieReactors( true ); break;
   case Edit::InService: sm->kivDoZombieReactors( false ); break;
   case Edit::Rebuild:
      sm = nullptr;
      sm = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( Ptr< Config >( &config ), mapping );
      break;
   }
}

RC_GTEST_PROP( LagMappingModel, isInStepWhileOnAndInServiceAndStaysAsItIsOtherwise, () ) {
   auto const config = Quelm::make< Config >( "config" );
   auto const mapping = Quelm::make< LagPhyIntfMapping >( "mapping" );
   auto sm = LagPhyIntfMappingSm::LagPhyIntfMappingSmIs( config, mapping );
   sm->hasNotificationActiveIs( true );
   for ( Edit const & edit : *anyEdits() ) {
      Members const before = held( *mapping );
      apply( edit, *config, mapping, sm );
      bool const isDerived = sm->hasNotificationActive() && !sm->isZombie();
      RC_ASSERT( held( *mapping ) == ( isDerived ? computed( *config ) : before ) );
   }
}

}  // namespace LagPhyIntfMappingSmTest
