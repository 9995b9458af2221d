// The entry managers: ids, room, the exhausted flag, installing and releasing, egress masks.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "TwoUnitSwitch.h"

namespace SoftTcamEntryManagerTest {

using namespace ChipTest;
using Chip::codeOf;
using Chip::ResultCode;

constexpr S32 kUnknownUnit = codeOf( ResultCode::UnknownUnit );
constexpr S32 kUnknownEntry = codeOf( ResultCode::UnknownEntry );

class SoftTcamEntryManager : public testing::Test {
 protected:
   U32 get( U32 unit ) const { return leaf1.ifp->getEntry( unit, "rule", {} ); }
   void fill( U32 unit ) const {
      while ( get( unit ) != 0 ) {
      }
   }
   std::vector< U32 > maskRead( U32 unit, U32 id ) const {
      Vornal::EgressMaskResult const result = leaf1.ifp->getEgressMaskActionPbmp( unit, id );
      EXPECT_EQ( result.rc(), 0 );
      std::vector< U32 > ports;
      Brum::PerUnitBitmap const bitmap = Chip::bitmapOf( result.pbmp() );
      for ( U32 port = 0; port < Brum::PerUnitBitmap::kBits; ++port ) {
         if ( bitmap.bit( port ) ) {
            ports.push_back( port );
         }
      }
      return ports;
   }

   TwoUnitSwitch leaf1{ 2 };
   Chip::SoftTcamEntryManager & ifp = *leaf1.ifp;
   Chip::SoftTcamEntryManager & efp = *leaf1.efp;
};

// --- Ids

TEST_F( SoftTcamEntryManager, IdsStartAtOneOnEachUnit ) {
   EXPECT_EQ( get( 0 ), 1U );
   EXPECT_EQ( get( 1 ), 1U );
}

TEST_F( SoftTcamEntryManager, IdsAreUniqueAcrossTheGroupsOfAUnit ) {
   EXPECT_EQ( ifp.getEntry( 0, "a", {} ), 1U );
   EXPECT_EQ( efp.getEntry( 0, "b", {} ), 2U );
   EXPECT_EQ( ifp.getEntry( 0, "c", {} ), 3U );
}

TEST_F( SoftTcamEntryManager, IdsAreNeverUsedTwice ) {
   for ( U32 expected = 1; expected <= 10; ++expected ) {
      EXPECT_EQ( get( 0 ), expected );
      ifp.releaseEntry( 0, expected );
   }
}

TEST_F( SoftTcamEntryManager, ARefusedRequestUsesUpNoId ) {
   fill( 0 );
   ifp.releaseEntry( 0, 1 );
   EXPECT_EQ( get( 0 ), 3U );
}

// --- Room

TEST_F( SoftTcamEntryManager, AFullGroupGivesNothing ) {
   EXPECT_NE( get( 0 ), 0U );
   EXPECT_NE( get( 0 ), 0U );
   EXPECT_EQ( get( 0 ), 0U );
   EXPECT_EQ( ifp.used( 0 ), 2U );
}

TEST_F( SoftTcamEntryManager, OtherUnitsAndGroupsHaveRoomOfTheirOwn ) {
   fill( 0 );
   EXPECT_NE( get( 1 ), 0U );
   EXPECT_NE( efp.getEntry( 0, "egress", {} ), 0U );
}

TEST_F( SoftTcamEntryManager, AReleaseMakesRoomWhetherInstalledOrNot ) {
   U32 const staged = get( 0 );
   U32 const installed = get( 0 );
   ifp.installEntry( 0, installed );
   ifp.releaseEntry( 0, staged );
   EXPECT_NE( get( 0 ), 0U );
   ifp.releaseEntry( 0, installed );
   EXPECT_NE( get( 0 ), 0U );
}

TEST_F( SoftTcamEntryManager, ReleasingNothingDoesNothing ) {
   fill( 0 );
   U32 const egress = efp.getEntry( 0, "egress", {} );
   for ( U32 const id : { 0U, 99U, egress } ) {
      ifp.releaseEntry( 0, id );
   }
   ifp.releaseEntry( 7, 1 );
   EXPECT_EQ( ifp.used( 0 ), 2U );
   EXPECT_EQ( efp.used( 0 ), 1U );
   EXPECT_TRUE( ifp.exhausted( 0 ) );
}

TEST_F( SoftTcamEntryManager, AUnitThatDoesNotExistGivesNothingAndGetsNoFlag ) {
   EXPECT_EQ( get( 7 ), 0U );
   EXPECT_FALSE( ifp.exhaustedHas( 7 ) );
   EXPECT_EQ( get( 0x10000 ), 0U );
   EXPECT_FALSE( ifp.exhaustedHas( 0 ) );
}

// --- Other users of the group

TEST_F( SoftTcamEntryManager, OtherUsersTakeRoom ) {
   EXPECT_EQ( ifp.foreignEntriesIs( 0, 1 ), 1U );
   EXPECT_NE( get( 0 ), 0U );
   EXPECT_EQ( get( 0 ), 0U );
   EXPECT_NE( get( 1 ), 0U );
}

TEST_F( SoftTcamEntryManager, OtherUsersGetNoMoreThanThereIs ) {
   get( 0 );
   EXPECT_EQ( ifp.foreignEntriesIs( 0, 100 ), 1U );
   EXPECT_EQ( ifp.foreignEntries( 0 ), 1U );
   EXPECT_EQ( ifp.foreignEntriesIs( 7, 100 ), 0U );
}

TEST_F( SoftTcamEntryManager, GivingBackClearsTheFlag ) {
   ifp.foreignEntriesIs( 0, 2 );
   EXPECT_EQ( get( 0 ), 0U );
   EXPECT_TRUE( ifp.exhausted( 0 ) );
   ifp.foreignEntriesIs( 0, 1 );
   EXPECT_FALSE( ifp.exhausted( 0 ) );
   EXPECT_NE( get( 0 ), 0U );
}

TEST_F( SoftTcamEntryManager, TakingRoomDoesNotClearTheFlag ) {
   fill( 0 );
   ifp.foreignEntriesIs( 0, 1 );
   EXPECT_TRUE( ifp.exhausted( 0 ) );
}

// --- The flag

// What was notified about the flags, as "unit: old -> new".
class FlagWatch {
 public:
   explicit FlagWatch( Quelm::Ptr< Chip::SoftTcamEntryManager > const & manager )
         : watch_( manager, [ this ]( Kiv::Change const & change ) {
              if ( change.attribute() == Vornal::VornalTcamEntryManager::exhaustedAttr() ) {
                 seen.push_back( Quelm::textOf( change.key< U16 >() ) + ": " +
                                 text( change.oldValue< bool >() ) + " -> " +
                                 text( change.newValue< bool >() ) );
              }
           } ) {
      watch_.hasNotificationActiveIs( true );
   }

   std::vector< std::string > seen;

 private:
   static std::string text( bool const * value ) {
      return value ? Quelm::textOf( *value ) : "none";
   }

   Kiv::Watch< Chip::SoftTcamEntryManager > watch_;
};

TEST_F( SoftTcamEntryManager, TheFlagIsNotifiedWhenARequestIsRefusedAndWhenRoomIsMade ) {
   FlagWatch const watch( leaf1.ifp );
   U32 const first = get( 1 );
   get( 1 );
   EXPECT_TRUE( watch.seen.empty() );
   get( 1 );
   get( 1 );
   EXPECT_EQ( watch.seen, std::vector< std::string >{ "1: none -> true" } );
   ifp.releaseEntry( 1, first );
   EXPECT_EQ( watch.seen, ( std::vector< std::string >{ "1: none -> true", "1: true -> false" } ) );
   ifp.releaseEntry( 1, 2 );
   EXPECT_EQ( watch.seen.size(), 2U );
}

TEST_F( SoftTcamEntryManager, TheFlagsOfOneUnitAndGroupAreNotAnothers ) {
   FlagWatch const egressWatch( leaf1.efp );
   fill( 0 );
   EXPECT_TRUE( ifp.exhausted( 0 ) );
   EXPECT_FALSE( ifp.exhaustedHas( 1 ) );
   EXPECT_FALSE( efp.exhaustedHas( 0 ) );
   EXPECT_TRUE( egressWatch.seen.empty() );
}

TEST_F( SoftTcamEntryManager, AHandlerOfTheFlagMayAskAgainAtOnce ) {
   U32 granted = 0;
   Kiv::Watch< Chip::SoftTcamEntryManager > retry( leaf1.ifp, [ & ]( Kiv::Change const & ) {
      if ( !ifp.exhausted( 0 ) ) {
         granted = get( 0 );
      }
   } );
   fill( 0 );
   retry.hasNotificationActiveIs( true );
   ifp.releaseEntry( 0, 1 );
   EXPECT_EQ( granted, 3U );
}

// --- Installing

TEST_F( SoftTcamEntryManager, InstallsWhatItKnows ) {
   U32 const id = get( 0 );
   EXPECT_EQ( ifp.installEntry( 0, id ), 0 );
   EXPECT_EQ( ifp.installEntry( 0, id ), 0 );
   EXPECT_EQ( ifp.reinstallEntry( 0, id ), 0 );
}

TEST_F( SoftTcamEntryManager, DoesNotInstallWhatItDoesNotKnow ) {
   U32 const egress = efp.getEntry( 0, "egress", {} );
   for ( U32 const id : { 0U, 99U, egress } ) {
      EXPECT_EQ( ifp.installEntry( 0, id ), kUnknownEntry );
      EXPECT_EQ( ifp.reinstallEntry( 0, id ), kUnknownEntry );
   }
   EXPECT_EQ( ifp.installEntry( 7, egress ), kUnknownUnit );
   EXPECT_EQ( ifp.reinstallEntry( 7, egress ), kUnknownUnit );
}

TEST_F( SoftTcamEntryManager, ReinstallsOnlyWhatIsInstalled ) {
   U32 const id = get( 0 );
   EXPECT_EQ( ifp.reinstallEntry( 0, id ), codeOf( ResultCode::NotInstalled ) );
   EXPECT_EQ( leaf1.winner( 0, Chip::IngressFields{} ), 0U );
}

// --- Egress masks

TEST_F( SoftTcamEntryManager, ReadsTheWrittenMaskBack ) {
   U32 const id = get( 0 );
   ifp.addEgressMaskAction( 0, id, pbmpOfPorts( { 5, 351 } ) );
   EXPECT_EQ( ifp.getEgressMaskActionPbmp( 0, id ).rc(), codeOf( ResultCode::NotFound ) );
   ifp.installEntry( 0, id );
   EXPECT_EQ( maskRead( 0, id ), ( std::vector< U32 >{ 5, 351 } ) );
   ifp.updateEgressMaskAction( 0, id, pbmpOfPorts( { 6 } ) );
   EXPECT_EQ( maskRead( 0, id ), ( std::vector< U32 >{ 5, 351 } ) );
   ifp.reinstallEntry( 0, id );
   EXPECT_EQ( maskRead( 0, id ), std::vector< U32 >{ 6 } );
}

TEST_F( SoftTcamEntryManager, AnEmptyMaskIsAMask ) {
   U32 const id = get( 0 );
   ifp.addEgressMaskAction( 0, id, pbmpOfPorts( {} ) );
   ifp.installEntry( 0, id );
   EXPECT_EQ( maskRead( 0, id ), std::vector< U32 >() );
}

TEST_F( SoftTcamEntryManager, DoesNotAddAMaskTwiceNorUpdateOneThatIsNotThere ) {
   U32 const id = get( 0 );
   ifp.updateEgressMaskAction( 0, id, pbmpOfPorts( { 6 } ) );
   ifp.installEntry( 0, id );
   EXPECT_EQ( ifp.getEgressMaskActionPbmp( 0, id ).rc(), codeOf( ResultCode::NotFound ) );
   ifp.addEgressMaskAction( 0, id, pbmpOfPorts( { 5 } ) );
   ifp.addEgressMaskAction( 0, id, pbmpOfPorts( { 6 } ) );
   ifp.installEntry( 0, id );
   EXPECT_EQ( maskRead( 0, id ), std::vector< U32 >{ 5 } );
}

TEST_F( SoftTcamEntryManager, AnEgressGroupHasNoMasks ) {
   U32 const id = efp.getEntry( 0, "egress", {} );
   efp.addEgressMaskAction( 0, id, pbmpOfPorts( { 5 } ) );
   efp.installEntry( 0, id );
   EXPECT_EQ( efp.getEgressMaskActionPbmp( 0, id ).rc(), codeOf( ResultCode::Unsupported ) );
}

TEST_F( SoftTcamEntryManager, FindsNoMaskOfUnknownEntries ) {
   EXPECT_EQ( ifp.getEgressMaskActionPbmp( 0, 99 ).rc(), kUnknownEntry );
   EXPECT_EQ( ifp.getEgressMaskActionPbmp( 7, 1 ).rc(), kUnknownUnit );
}

// --- As an entity

TEST_F( SoftTcamEntryManager, IsFoundByItsGroup ) {
   auto const & groups = leaf1.board.groupManager();
   EXPECT_EQ( groups->unboundedEntryManager( kIfp ), leaf1.ifp );
   EXPECT_EQ( groups->unboundedEntryManager( kEfp ), leaf1.efp );
   EXPECT_FALSE( groups->unboundedEntryManager( 1 ) );
   EXPECT_EQ( groups->typeData().name(), "Chip::SoftTcamGroupManager" );
}

TEST_F( SoftTcamEntryManager, CanBeAskedByName ) {
   Kiv::Type const & type = ifp.typeData();
   EXPECT_EQ( type.name(), "Chip::SoftTcamEntryManager" );
   EXPECT_EQ( type.find( "group" )->text( ifp, "" ), "157" );
   EXPECT_EQ( type.findOperation( "capacity", 1 )->call( ifp, { "0" } ), "2" );
   EXPECT_EQ( type.findOperation( "foreignEntriesIs", 2 )->call( ifp, { "0", "2" } ), "2" );
   EXPECT_EQ( get( 0 ), 0U );
   EXPECT_EQ( type.find( "exhausted" )->text( ifp, "0" ), "true" );
}

}  // namespace SoftTcamEntryManagerTest
