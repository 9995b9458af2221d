#include <Story/Spool.h>

#include <functional>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include <Restored.h>
#include <Story/InputError.h>
#include <Support.h>

namespace {

using Story::Spool;

std::string textOf( Spool const & spool ) {
   std::ostringstream out;
   spool.writeTo( out );
   return out.str();
}

std::string refusalIn( std::function< void() > const & work ) {
   try {
      work();
   } catch ( Story::InputError const & error ) {
      return error.what();
   }
   return "";
}

std::string refusalOf( Spool & spool, std::string const & text ) {
   return refusalIn( [ & ] { spool.add( text ); } );
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
   Restored::Variable const temporary( "TMPDIR", folder.path() );
   Spool spool;
   spool.add( "a text" );
   EXPECT_TRUE( std::filesystem::is_empty( folder.path() ) );

   temporary.is( "/nowhere" );
   Spool other;
   EXPECT_EQ(
      refusalOf( other, "a text" ),
      "the frames of the document find no room in /nowhere (No such file or directory); name "
      "another folder in TMPDIR" );
   EXPECT_EQ( textOf( spool ), "a text" );
}

TEST( Spool, SaysThatItsFileIsFull ) {
   Support::Directory const folder;
   Restored::Variable const temporary( "TMPDIR", folder.path() );
   Restored::RoomInFiles const room( 10'000 );
   std::string const refusal = "the frames of the document find no room in " +
                               folder.path().string() +
                               " (File too large); name another folder in TMPDIR";
   Spool large;
   EXPECT_EQ( refusalOf( large, std::string( 100'000, 'x' ) ), refusal );

   Restored::RoomInFiles const noRoom( 0 );
   Spool small;
   EXPECT_EQ( refusalOf( small, "it waits in memory" ), "" );
   EXPECT_EQ( refusalIn( [ & ] { small.flush(); } ), refusal );
}

}  // namespace
