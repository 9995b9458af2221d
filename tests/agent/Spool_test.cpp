#include <Story/Spool.h>

#include <csignal>
#include <cstdlib>
#include <sstream>
#include <string>

#include <Story/InputError.h>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "Support.h"

namespace {

using Story::Spool;

std::string textOf( Spool const & spool ) {
   std::ostringstream out;
   spool.writeTo( out );
   return out.str();
}

std::string refusalOf( Spool & spool, std::string const & text ) {
   try {
      spool.add( text );
   } catch ( Story::InputError const & error ) {
      return error.what();
   }
   return "";
}

TEST( Spool, GivesAllTextsBackInTheirOrderAndTakesMore ) {
   Spool spool;
   EXPECT_TRUE( spool.isEmpty() );
   EXPECT_EQ( textOf( spool ), "" );
   std::string expected;
   for ( int n = 0; n < 100'000; ++n ) {
      spool.add( std::to_string( n ) + "\n" );
      expected += std::to_string( n ) + "\n";
   }

   EXPECT_FALSE( spool.isEmpty() );
   EXPECT_EQ( textOf( spool ), expected );
   spool.add( "the last" );
   EXPECT_EQ( textOf( spool ), expected + "the last" );
}

TEST( Spool, StandsInTheFolderOfTemporaryFilesWithoutAName ) {
   Support::Directory const folder;
   setenv( "TMPDIR", folder.path().c_str(), 1 );
   Spool spool;
   spool.add( "a text" );
   EXPECT_TRUE( std::filesystem::is_empty( folder.path() ) );

   setenv( "TMPDIR", "/nowhere", 1 );
   Spool other;
   EXPECT_EQ( refusalOf( other, "a text" ),
              "the frames of the document find no room: TMPDIR, or else /tmp, is no folder that "
              "takes them (No such file or directory); name another in TMPDIR" );
   EXPECT_EQ( textOf( spool ), "a text" );
   unsetenv( "TMPDIR" );
}

TEST( Spool, SaysThatItsFileIsFull ) {
   signal( SIGXFSZ, SIG_IGN );
   rlimit const room{ .rlim_cur = 10'000, .rlim_max = RLIM_INFINITY };
   setrlimit( RLIMIT_FSIZE, &room );
   Spool spool;
   EXPECT_EQ( refusalOf( spool, std::string( 100'000, 'x' ) ),
              "the frames of the document find no room: TMPDIR, or else /tmp, is no folder that "
              "takes them (File too large); name another in TMPDIR" );
}

}  // namespace
