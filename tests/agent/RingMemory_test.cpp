// Which files are taken as the memory of a trace ring, and which are left alone.
#include <Process/RingMemory.h>

#include <gtest/gtest.h>

#include <Process/Child.h>
#include <Quelm/Error.h>
#include <Support.h>

#include <sys/stat.h>
#include <unistd.h>

namespace {

using Process::RingMemory;

class RingFile : public testing::Test {
 protected:
   // Why the file is not taken; empty when it is.
   std::string refusal() const {
      try {
         RingMemory const memory( file );
         return "";
      } catch ( Quelm::Error const & error ) {
         return error.what();
      }
   }

   void lineNew( RingMemory const & memory, std::string const & text ) const {
      Trace::Ring( memory.bytes() ).lineNew( { "Handle", 5, text } );
   }

   std::vector< Trace::Ring::Decoded > lines() const {
      std::string const content = Support::contentOf( file );
      return Trace::Ring::decode( std::as_bytes( std::span( content ) ) );
   }

   Support::Directory directory;
   std::filesystem::path const file = directory.path() / "ring";
};

TEST_F( RingFile, IsTakenWhenItIsNewAndIsARingFromThenOn ) {
   RingMemory const memory( file );
   EXPECT_TRUE( lines().empty() );
}

TEST_F( RingFile, IsLeftToTheRunThatHasIt ) {
   RingMemory const first( file );
   lineNew( first, "of the first run" );

   EXPECT_EQ( refusal(), "--ring: " + file.string() +
                            " is the ring of a run that goes on; name a new file, or the ring of a "
                            "run that is over" );
   ASSERT_EQ( lines().size(), 1U );
   EXPECT_EQ( lines()[ 0 ].text, "of the first run" );
   lineNew( first, "its memory is still there" );
   EXPECT_EQ( Process::lastLines( first.bytes(), 1 ).at( 0 ).text, "its memory is still there" );
}

TEST_F( RingFile, IsTakenAgainAndEmptyWhenThatRunIsOver ) {
   {
      RingMemory const first( file );
      lineNew( first, "of the first run" );
   }
   RingMemory const second( file );
   EXPECT_TRUE( lines().empty() );
   lineNew( second, "of the second run" );
   EXPECT_EQ( lines().at( 0 ).text, "of the second run" );
}

TEST_F( RingFile, IsKeptAtItsSizeWhenItIsAnotherVersions ) {
   std::vector< std::byte > small( Trace::Ring::sizeFor( 5 ) );
   Trace::Ring( small ).lineNew( { "Handle", 5, "old" } );
   directory.file( "ring", { reinterpret_cast< char const * >( small.data() ), small.size() } );

   RingMemory const memory( file );
   EXPECT_EQ( memory.bytes().size(), small.size() );
   EXPECT_TRUE( lines().empty() );
}

TEST_F( RingFile, IsLeftAloneWhenItHoldsSomethingElse ) {
   for ( std::string const & content : { std::string( "x" ), std::string( 3'000'000, 'x' ) } ) {
      directory.file( "ring", content );
      EXPECT_EQ( refusal(), "--ring: " + file.string() +
                               " holds something else; name a new file, or the ring of a run that "
                               "is over" );
      EXPECT_EQ( Support::contentOf( file ), content );
   }
}

TEST_F( RingFile, IsTakenWhenSomebodyHasMadeItEmpty ) {
   directory.file( "ring", "" );
   EXPECT_EQ( refusal(), "" );
}

TEST_F( RingFile, IsNoPipeDeviceOrDirectory ) {
   std::string const remedy =
      " is no regular file; name a new file, or the ring of a run that is over";
   ASSERT_EQ( mkfifo( file.c_str(), 0600 ), 0 );
   EXPECT_EQ( refusal(), "--ring: " + file.string() + remedy );
   EXPECT_THROW( RingMemory( "/dev/null" ), Quelm::Error );
   EXPECT_THROW( RingMemory( directory.path() ), Quelm::Error );
}

TEST_F( RingFile, HasNoLastLinesWhenSomebodyHasCutItShort ) {
   RingMemory const memory( file );
   lineNew( memory, "gone" );
   EXPECT_TRUE( Process::isWhole( memory.bytes() ) );
   ASSERT_EQ( truncate( file.c_str(), 0 ), 0 );

   EXPECT_FALSE( Process::isWhole( memory.bytes() ) );
   EXPECT_TRUE( Process::lastLines( memory.bytes(), 20 ).empty() );
}

TEST_F( RingFile, ThatIsCutShortUnderARunIsNoStopOfThePlugIn ) {
   RingMemory const memory( file );
   Support::Recorder story;
   Process::runInChild(
      [ & ]( Story::Observer & ) {
         signal( SIGBUS, SIG_DFL );
         if ( truncate( file.c_str(), 0 ) == 0 ) {
            lineNew( memory, "into nothing" );
         }
      },
      memory.bytes(), story );

   EXPECT_TRUE( story.all< Story::Stopped >().empty() );
   ASSERT_EQ( story.all< Story::BadInput >().size(), 1U );
   EXPECT_EQ(
      story.all< Story::BadInput >()[ 0 ].text,
      "the file of the trace ring was cut short while the run went on; leave it alone until "
      "the run is over" );
}

}  // namespace
