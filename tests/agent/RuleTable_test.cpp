#include <Story/RuleTable.h>

#include <gtest/gtest.h>

namespace {

Chip::Rule rule( U32 id, bool isWritten = true ) {
   return { { 0, 157, id }, "rule", isWritten, {} };
}

class RuleTable : public testing::Test {
 protected:
   void is( Chip::Rule const & rule ) { table.onEvent( Story::RuleIs{ rule } ); }
   void gone( U32 id ) { table.onEvent( Story::RuleGone{ { 0, 157, id } } ); }

   Story::RuleTable table;
};

TEST_F( RuleTable, CountsARuleThatIsBuiltStepByStepAsAddedOnceAndAsItEndedUp ) {
   is( rule( 1, false ) );
   is( rule( 1, true ) );

   auto const changes = table.changes();

   ASSERT_EQ( changes.added.size(), 1U );
   EXPECT_TRUE( changes.added[ 0 ].isWritten );
   EXPECT_TRUE( changes.changed.empty() );
}

TEST_F( RuleTable, ShowsWhatAChangedRuleWasAtTheMark ) {
   is( rule( 1, false ) );
   table.changes();
   is( rule( 1, true ) );

   auto const changes = table.changes();

   ASSERT_EQ( changes.changed.size(), 1U );
   EXPECT_FALSE( changes.changed[ 0 ].before.isWritten );
   EXPECT_TRUE( changes.changed[ 0 ].after.isWritten );
}

TEST_F( RuleTable, ShowsARemovedRuleAsItWas ) {
   is( rule( 1 ) );
   table.changes();
   gone( 1 );

   auto const changes = table.changes();

   ASSERT_EQ( changes.removed.size(), 1U );
   EXPECT_EQ( changes.removed[ 0 ], rule( 1 ) );
   EXPECT_TRUE( table.rules().empty() );
}

TEST_F( RuleTable, SaysNothingOfRulesThatCameAndWentOrAreAgainAsTheyWere ) {
   is( rule( 1 ) );
   table.changes();
   is( rule( 1, false ) );
   is( rule( 1, true ) );
   is( rule( 2 ) );
   gone( 2 );

   EXPECT_TRUE( table.changes().isEmpty() );
}

TEST_F( RuleTable, KeepsRulesInTheOrderOfUnitGroupAndId ) {
   is( { { 1, 45, 1 }, "c", true, {} } );
   is( rule( 2 ) );
   is( rule( 1 ) );

   std::vector< Chip::RuleKey > keys;
   for ( auto const & [ key, unused ] : table.rules() ) {
      keys.push_back( key );
   }

   EXPECT_EQ( keys,
              ( std::vector< Chip::RuleKey >{ { 0, 157, 1 }, { 0, 157, 2 }, { 1, 45, 1 } } ) );
}

}  // namespace
