// A failed assertion stops the process with SIGABRT and says on one line of standard error where
// and why; a held one costs nothing but its test.
#include <gtest/gtest.h>

#include <csignal>
#include <string>
#include <utility>

#include <Quelm/Assert.h>

namespace QuelmAssertTest {

constexpr int kOk = 0;

constexpr int kLineOfInstalled = __LINE__ + 2;
void installed( int rc ) {
   QUELM_ASSERT( rc == kOk && "installEntry failed" );
}

void installedAtTheLineThatSupportToolsKnow( int rc ) {
   QUELM_ASSERT_AT( 279, rc == kOk );
}

constexpr int kLineOfCompared = __LINE__ + 2;
void comparedPairs( int id ) {
   QUELM_ASSERT( std::pair< int, int >( id, 1 ) == std::pair< int, int >( 0, 1 ) );
}

testing::Matcher< std::string const & > line( int number,
                                              std::string const & functionAndExpression ) {
   return testing::Eq( "QuelmAssert_test.cpp:" + std::to_string( number ) + ": " +
                       functionAndExpression );
}

TEST( QuelmAssertDeathTest, SaysFileLineFunctionAndTheSourceTextOfTheExpression ) {
   EXPECT_EXIT( installed( -1 ), testing::KilledBySignal( SIGABRT ),
                line( kLineOfInstalled,
                      "void QuelmAssertTest::installed(int): Assertion "
                      "'rc == kOk && \"installEntry failed\"' failed.\n" ) );
}

TEST( QuelmAssertDeathTest, ReportsAGivenLineInPlaceOfItsOwn ) {
   EXPECT_EXIT( installedAtTheLineThatSupportToolsKnow( -1 ), testing::KilledBySignal( SIGABRT ),
                line( 279,
                      "void QuelmAssertTest::installedAtTheLineThatSupportToolsKnow(int): "
                      "Assertion 'rc == kOk' failed.\n" ) );
}

TEST( QuelmAssertDeathTest, KeepsTheCommasOfAnExpression ) {
   EXPECT_EXIT( comparedPairs( 7 ), testing::KilledBySignal( SIGABRT ),
                line( kLineOfCompared,
                      "void QuelmAssertTest::comparedPairs(int): Assertion "
                      "'std::pair< int, int >( id, 1 ) == std::pair< int, int >( 0, 1 )' "
                      "failed.\n" ) );
}

TEST( QuelmAssert, LetsPassWhatHoldsAndLooksOnce ) {
   int looks = 0;
   QUELM_ASSERT( ++looks );
   QUELM_ASSERT_AT( 279, ++looks );
   EXPECT_EQ( looks, 2 );
}

}  // namespace QuelmAssertTest
