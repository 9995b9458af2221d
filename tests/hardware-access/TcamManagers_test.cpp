// Who hands out TCAM entries: the group manager that leads to the entry managers, the key that a
// request carries, and the port bitmaps that go to the chip.
#include <gtest/gtest.h>

#include <string>

#include <Quelm/Text.h>
#include <VornalTcam/EntryManager.h>
#include <VornalTcam/UnitBitmap.h>

namespace TcamManagersTest {

using Vornal::VornalTcamGroupManager;
using Vornal::VornalUnboundedTcamEntryManager;

// A group that is always full.
class FullGroup : public VornalUnboundedTcamEntryManager {
 public:
   using VornalUnboundedTcamEntryManager::VornalUnboundedTcamEntryManager;

   U32 getEntry( U32, std::string const &, VornalTcam::RequestKey const & ) override { return 0; }
   S32 installEntry( U32, U32 ) override { return 0; }
   S32 reinstallEntry( U32, U32 ) override { return 0; }
   void releaseEntry( U32, U32 ) override {}
   void setPriorityForEntry( U32, U32, U32 ) override {}
   void addEgressMaskAction( U32, U32, _shr_pbmp const & ) override {}
   void updateEgressMaskAction( U32, U32, _shr_pbmp const & ) override {}
   Vornal::EgressMaskResult getEgressMaskActionPbmp( U32, U32 ) override { return { 0, {} }; }
};

TEST( TcamGroupManager, KnowsTheIngressAndTheEgressGroupByTheirCodes ) {
   EXPECT_EQ( Vornal::kIfpLocalBiasGroup, 157 );
   EXPECT_EQ( Vornal::kEfpLocalBiasGroup, 45 );
   EXPECT_EQ( sizeof( Vornal::TcamGroupAssignment ), 1U );
}

TEST( TcamGroupManager, FindsTheManagerRegisteredForAGroup ) {
   auto const groups = Quelm::make< VornalTcamGroupManager >( "tcamManager" );
   auto const ingress = Quelm::make< FullGroup >( Vornal::kIfpLocalBiasGroup );
   auto const egress = Quelm::make< FullGroup >( Vornal::kEfpLocalBiasGroup );
   groups->entryManagerIs( ingress );
   groups->entryManagerIs( egress );
   EXPECT_EQ( groups->unboundedEntryManager( 157 ), ingress );
   EXPECT_EQ( groups->unboundedEntryManager( 45 ), egress );
   EXPECT_EQ( groups->unboundedEntryManager( 157 ), ingress ) << "the second time as well";
}

TEST( TcamGroupManager, SharesTheManagerWithWhoeverAsked ) {
   auto const groups = Quelm::make< VornalTcamGroupManager >( "tcamManager" );
   groups->entryManagerIs( Quelm::make< FullGroup >( Vornal::kIfpLocalBiasGroup ) );
   auto const ingress = groups->unboundedEntryManager( 157 );
   groups->entryManagerDel( 157 );
   EXPECT_EQ( ingress->group(), 157 );
   EXPECT_EQ( ingress->users(), 1U );
}

TEST( TcamGroupManager, LooksUpAndCreatesNothing ) {
   auto const groups = Quelm::make< VornalTcamGroupManager >( "tcamManager" );
   groups->entryManagerIs( Quelm::make< FullGroup >( Vornal::kIfpLocalBiasGroup ) );
   EXPECT_FALSE( groups->unboundedEntryManager( 45 ) );
   EXPECT_FALSE( groups->entryManagerHas( 45 ) );
   EXPECT_EQ( groups->typeData().find( "entryManager" )->keys( *groups ),
              std::vector< std::string >{ "157" } );
}

TEST( TcamEntryManager, HasNoExhaustedFlagForAUnitUntilOneIsSet ) {
   auto const ingress = Quelm::make< FullGroup >( Vornal::kIfpLocalBiasGroup );
   EXPECT_FALSE( ingress->exhaustedHas( 2 ) );
   EXPECT_FALSE( ingress->exhausted( 2 ) );
   ingress->exhaustedIs( 2, true );
   EXPECT_TRUE( ingress->exhausted( 2 ) );
   EXPECT_FALSE( ingress->exhausted( 3 ) );
}

TEST( RequestKey, IsEmptyWhenDefaultBuilt ) {
   VornalTcam::RequestKey const key;
   EXPECT_EQ( key.owner(), "" );
   EXPECT_EQ( key.number(), 0U );
   EXPECT_EQ( key.detail(), "" );
   EXPECT_EQ( Quelm::textOf( key ), "VornalTcam::RequestKey( owner=\"\", number=0, detail=\"\" )" );
}

TEST( RequestKey, IsATextANumberAndASecondTextInThisOrder ) {
   auto const key = Quelm::fromText< VornalTcam::RequestKey >(
      "VornalTcam::RequestKey( owner=evpn, number=4294967295, detail=\"vtep 10.0.0.2\" )" );
   VornalTcam::RequestKey same;
   same.ownerIs( "evpn" );
   same.numberIs( 4294967295U );
   same.detailIs( "vtep 10.0.0.2" );
   EXPECT_EQ( key, same );
   EXPECT_NE( key, VornalTcam::RequestKey() );
}

TEST( UnitBitmapToPbm, PutsEveryPortAtItsBit ) {
   Brum::PerUnitBitmap bitmap;
   for ( U32 const port : { 0U, 31U, 32U, 69U, 351U } ) {
      bitmap.bitSet( port );
   }
   _shr_pbmp pbmp{};
   Vornal::unitBitmapToPbm( bitmap, pbmp );
   EXPECT_EQ( pbmp.words, ( std::array< U32, 11 >{ 0x80000001, 0x00000001, 0x00000020, 0, 0, 0, 0,
                                                   0, 0, 0, 0x80000000 } ) );
}

TEST( UnitBitmapToPbm, AddsToThePortsThatAreThere ) {
   Brum::PerUnitBitmap bitmap;
   bitmap.bitSet( 5 );
   _shr_pbmp pbmp{};
   pbmp.words[ 0 ] = 0x1;
   Vornal::unitBitmapToPbm( bitmap, pbmp );
   EXPECT_EQ( pbmp.words[ 0 ], 0x21U );
}

}  // namespace TcamManagersTest
