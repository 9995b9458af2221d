// The ring keeps the last lines of a process, whatever becomes of the process; the decoder reads a
// whole block and refuses a damaged one.
#include <gtest/gtest.h>

#include <csignal>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <rapidcheck/gtest.h>

#include <Kiv/Activity.h>
#include <Quelm/Error.h>
#include <Trace/Ring.h>

namespace TraceRingTest {

using Trace::Handle;
using Trace::Line;
using Trace::Ring;
using Texts = std::vector< std::string >;

// Memory for a ring of some slots, aligned as a mapped file is.
class Block {
 public:
   explicit Block( std::size_t slots ) : words_( Ring::sizeFor( slots ) / sizeof( U64 ) ) {}
   std::span< std::byte > bytes() { return std::as_writable_bytes( std::span( words_ ) ); }
   std::byte * slot( std::size_t n ) { return bytes().data() + ( n + 1 ) * Ring::kSlotSize; }

 private:
   std::vector< U64 > words_;
};

Texts textsIn( std::span< std::byte const > bytes ) {
   Texts texts;
   for ( Ring::Decoded const & line : Ring::decode( bytes ) ) {
      texts.push_back( line.text );
   }
   return texts;
}

bool isRefused( std::span< std::byte const > bytes ) {
   try {
      Ring::decode( bytes );
      return false;
   } catch ( Quelm::TextError const & error ) {
      EXPECT_STREQ( error.what(), "not a trace ring of version 2" );
      return true;
   }
}

TEST( TraceRing, StartsEmptyWhateverTheMemoryHeld ) {
   Block block( 4 );
   std::memset( block.bytes().data(), 0xff, block.bytes().size() );
   Ring const ring( block.bytes() );
   EXPECT_TRUE( Ring::decode( block.bytes() ).empty() );
}

TEST( TraceRing, GivesBackWhatWasWritten ) {
   Block block( 4 );
   Ring ring( block.bytes() );
   ring.lineNew( { "VornalEvpnSm", 5, "handleTepSegment tepIp: 10.0.0.2" } );
   ring.lineNew( { "ApiVornal", 9, "" } );
   std::vector< Ring::Decoded > const lines = Ring::decode( block.bytes() );
   ASSERT_EQ( lines.size(), 2U );
   EXPECT_EQ( lines[ 0 ].number, 0U );
   EXPECT_EQ( lines[ 0 ].handle, "VornalEvpnSm" );
   EXPECT_EQ( lines[ 0 ].level, 5 );
   EXPECT_EQ( lines[ 0 ].text, "handleTepSegment tepIp: 10.0.0.2" );
   EXPECT_FALSE( lines[ 0 ].isCut );
   EXPECT_EQ( lines[ 0 ].time, 0 );
   EXPECT_EQ( lines[ 1 ].number, 1U );
   EXPECT_EQ( lines[ 1 ].level, 9 );
   EXPECT_EQ( lines[ 1 ].text, "" );
}

TEST( TraceRing, LineCarriesTheTimeOfTheAgentsClock ) {
   Kiv::ActivityManager const manager;
   Block block( 2 );
   Ring ring( block.bytes() );
   manager.clock()->nowIs( std::chrono::seconds( 3 ) );
   ring.lineNew( { "VornalEvpnSm", 5, "retry" } );
   EXPECT_EQ( Ring::decode( block.bytes() ).front().time, 3'000'000'000 );
}

TEST( TraceRing, LineCarriesTheStepThatItsOwnerIsIn ) {
   Block block( 3 );
   Ring ring( block.bytes() );
   ring.lineNew( { "VornalEvpnSm", 5, "start-up" } );
   ring.stepIs( 70'000 );
   ring.lineNew( { "VornalEvpnSm", 5, "later" } );
   std::vector< Ring::Decoded > const lines = Ring::decode( block.bytes() );
   EXPECT_EQ( lines[ 0 ].step, 0U );
   EXPECT_EQ( lines[ 1 ].step, 70'000U );
}

TEST( TraceRing, OldestLinesAreOverwritten ) {
   Block block( 3 );
   Ring ring( block.bytes() );
   for ( int n = 0; n < 8; ++n ) {
      ring.lineNew( { "VornalEvpnSm", 5, "line " + std::to_string( n ) } );
   }
   EXPECT_EQ( textsIn( block.bytes() ), ( Texts{ "line 5", "line 6", "line 7" } ) );
   EXPECT_EQ( Ring::decode( block.bytes() ).front().number, 5U );
}

TEST( TraceRing, ShorterLineLeavesNothingOfTheOneItOverwrites ) {
   Block block( 1 );
   Ring ring( block.bytes() );
   ring.lineNew( { "VornalEvpnMounter", 5, "doMountsComplete sliceId: 1" } );
   ring.lineNew( { "ApiVornal", 4, "ok" } );
   EXPECT_EQ( textsIn( block.bytes() ), Texts{ "ok" } );
   EXPECT_EQ( Ring::decode( block.bytes() ).front().handle, "ApiVornal" );
}

TEST( TraceRing, LineLongerThanASlotIsCutAndSaysSo ) {
   Block block( 2 );
   Ring ring( block.bytes() );
   std::string const fits( Ring::kSlotSize - 52, 'x' );
   ring.lineNew( { "VornalEvpnSm", 6, fits } );
   ring.lineNew( { "VornalEvpnSm", 6, fits + "y" } );
   std::vector< Ring::Decoded > const lines = Ring::decode( block.bytes() );
   ASSERT_EQ( lines.size(), 2U );
   EXPECT_EQ( lines[ 0 ].text, fits );
   EXPECT_FALSE( lines[ 0 ].isCut );
   EXPECT_EQ( lines[ 1 ].text, fits );
   EXPECT_TRUE( lines[ 1 ].isCut );
}

TEST( TraceRing, AnyTextIsKeptByteForByte ) {
   Block block( 1 );
   Ring ring( block.bytes() );
   std::string_view const text( "zero \0 and newline \n", 20 );
   ring.lineNew( { "VornalEvpnSm", 0, text } );
   EXPECT_EQ( textsIn( block.bytes() ), Texts{ std::string( text ) } );
}

TEST( TraceRing, MemoryThatHoldsNoSlotOrIsNotAlignedIsRefused ) {
   Block block( 2 );
   EXPECT_THROW( Ring( block.bytes().first( Ring::sizeFor( 1 ) - 1 ) ), Quelm::RangeError );
   EXPECT_THROW( Ring( std::span< std::byte >() ), Quelm::RangeError );
   EXPECT_THROW( Ring( block.bytes().subspan( 4 ) ), Quelm::RangeError );
   EXPECT_NO_THROW( Ring( block.bytes().first( Ring::sizeFor( 1 ) ) ) );
   EXPECT_NO_THROW( Ring( block.bytes().subspan( 8 ) ) );
}

TEST( TraceRing, MemoryBehindTheLastWholeSlotIsNotUsed ) {
   Block block( 3 );
   auto const bytes = block.bytes().first( Ring::sizeFor( 2 ) + 100 );
   Ring ring( bytes );
   for ( char const * const text : { "one", "two", "three" } ) {
      ring.lineNew( { "VornalEvpnSm", 5, text } );
   }
   EXPECT_EQ( textsIn( bytes ), ( Texts{ "two", "three" } ) );
}

TEST( TraceRing, LineThatWasBeingWrittenIsTheOnlyOneLost ) {
   Block block( 3 );
   Ring ring( block.bytes() );
   for ( char const * const text : { "one", "two", "three" } ) {
      ring.lineNew( { "VornalEvpnSm", 5, text } );
   }
   std::memset( block.slot( 1 ), 0, sizeof( U64 ) );
   EXPECT_EQ( textsIn( block.bytes() ), ( Texts{ "one", "three" } ) );
}

TEST( TraceRing, DamagedBlockIsRefused ) {
   Block block( 2 );
   Ring ring( block.bytes() );
   ring.lineNew( { "VornalEvpnSm", 5, "one" } );
   EXPECT_TRUE( isRefused( {} ) );
   EXPECT_TRUE( isRefused( block.bytes().first( 16 ) ) );
   EXPECT_TRUE( isRefused( block.bytes().first( Ring::sizeFor( 1 ) ) ) );
   EXPECT_TRUE( isRefused( block.bytes().subspan( 8 ) ) );
   for ( std::size_t const at : { 0U, 7U, 8U, 12U, 16U } ) {
      block.bytes()[ at ] ^= std::byte{ 1 };
      EXPECT_TRUE( isRefused( block.bytes() ) ) << at;
      block.bytes()[ at ] ^= std::byte{ 1 };
   }
   EXPECT_FALSE( isRefused( block.bytes() ) );
}

RC_GTEST_PROP( TraceRing, AnyDamageBehindTheHeaderIsReadWithoutHarm, () ) {
   constexpr std::size_t kSlots = 3;
   Block block( kSlots );
   Ring ring( block.bytes() );
   for ( char const * const text : { "one", "two", "three" } ) {
      ring.lineNew( { "VornalEvpnSm", 5, text } );
   }
   auto const damage = *rc::gen::container< std::vector< std::pair< std::size_t, U8 > > >(
      rc::gen::pair( rc::gen::inRange( Ring::kSlotSize, Ring::sizeFor( kSlots ) ),
                     rc::gen::arbitrary< U8 >() ) );
   for ( auto const & [ at, value ] : damage ) {
      block.bytes()[ at ] = std::byte{ value };
   }
   RC_ASSERT( Ring::decode( block.bytes() ).size() <= kSlots );
}

// --- Handles and the ring in use

class TraceRingInUse : public testing::Test {
 protected:
   TraceRingInUse() {
      Trace::ringIs( &ring );
      Trace::sinkIs( [ this ]( Line const & line ) { text.emplace_back( line.text ); } );
   }
   ~TraceRingInUse() override {
      Trace::ringIs( nullptr );
      Trace::sinkIs( nullptr );
   }

   Block block{ 8 };
   Ring ring{ block.bytes() };
   Handle handle{ "TestRingSm" };
   Texts text;
};

TEST_F( TraceRingInUse, MarkedLineGoesToBothWhereBothAreOn ) {
   TRACE_RING( handle, 0, "finishInit" );
   EXPECT_EQ( textsIn( block.bytes() ), Texts{ "finishInit" } );
   EXPECT_EQ( text, Texts{ "finishInit" } );
   EXPECT_EQ( Ring::decode( block.bytes() ).front().handle, "TestRingSm" );
}

TEST_F( TraceRingInUse, RingAndTextHaveLevelsOfTheirOwn ) {
   handle.textLevelsIs( 1U << 7 );
   TRACE_RING( handle, 5, "for the ring" );
   TRACE_RING( handle, 7, "for people" );
   TRACE_RING( handle, 8, "for nobody" );
   EXPECT_EQ( textsIn( block.bytes() ), Texts{ "for the ring" } );
   EXPECT_EQ( text, Texts{ "for people" } );
}

TEST_F( TraceRingInUse, UnmarkedLineDoesNotGoToTheRing ) {
   TRACE( handle, 0, "text only" );
   EXPECT_TRUE( textsIn( block.bytes() ).empty() );
   EXPECT_EQ( text, Texts{ "text only" } );
}

TEST_F( TraceRingInUse, WithoutARingItsLinesAreNotMade ) {
   int made = 0;
   TRACE_RING( handle, 5, ++made );
   EXPECT_EQ( made, 1 );
   Trace::ringIs( nullptr );
   TRACE_RING( handle, 5, ++made );
   EXPECT_EQ( made, 1 );
   TRACE_RING( handle, 0, ++made );  // which is text
   EXPECT_EQ( made, 2 );
}

TEST_F( TraceRingInUse, WithoutARingMarkedLinesAreStillText ) {
   Trace::ringIs( nullptr );
   TRACE_RING( handle, 0, "finishInit" );
   TRACE_RING( handle, 5, "for the ring" );
   EXPECT_EQ( text, Texts{ "finishInit" } );
   EXPECT_TRUE( textsIn( block.bytes() ).empty() );
}

// A file mapped as the agent maps it: shared, so that what a process wrote outlives it.
class MappedFile {
 public:
   explicit MappedFile( std::size_t size ) : size_( size ) {
      std::string name = testing::TempDir() + "trace-ring-XXXXXX";
      int const file = mkstemp( name.data() );
      QUELM_ASSERT( file >= 0 && ftruncate( file, static_cast< off_t >( size ) ) == 0 );
      unlink( name.c_str() );
      place_ = mmap( nullptr, size, PROT_READ | PROT_WRITE, MAP_SHARED, file, 0 );
      QUELM_ASSERT( place_ != MAP_FAILED );
      close( file );
   }
   MappedFile( MappedFile const & ) = delete;
   MappedFile & operator=( MappedFile const & ) = delete;
   ~MappedFile() { munmap( place_, size_ ); }
   std::span< std::byte > bytes() { return { static_cast< std::byte * >( place_ ), size_ }; }

 private:
   std::size_t size_;
   void * place_ = nullptr;
};

TEST_F( TraceRingInUse, LastLinesSurviveTheStopOfTheProcess ) {
   MappedFile file( Ring::sizeFor( 3 ) );
   pid_t const child = fork();
   if ( child == 0 ) {
      Ring childRing( file.bytes() );
      Trace::ringIs( &childRing );
      for ( int n = 0; n < 5; ++n ) {
         TRACE_RING( handle, 5, "addTcamEntries unit: " << n );
      }
      std::abort();
   }
   int status = 0;
   ASSERT_EQ( waitpid( child, &status, 0 ), child );
   EXPECT_TRUE( WIFSIGNALED( status ) && WTERMSIG( status ) == SIGABRT );
   EXPECT_EQ( textsIn( file.bytes() ), ( Texts{ "addTcamEntries unit: 2", "addTcamEntries unit: 3",
                                                "addTcamEntries unit: 4" } ) );
}

}  // namespace TraceRingTest
