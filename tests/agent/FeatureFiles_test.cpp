#include <FeatureFiles/Reader.h>

#include <fstream>

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

std::string const kToggle = "SbdEvpnTcamOverrideRule";
std::string const kFile = "VornalL3.json";

// A directory of feature files, and what the reader reports about them.
class FeatureFilesReader : public testing::Test {
 protected:
   FeatureFilesReader() { fs::create_directories( directory_ ); }
   ~FeatureFilesReader() override { fs::remove_all( directory_ ); }

   void fileIs( std::string const & text ) { std::ofstream( directory_ / kFile ) << text; }

   // What is wrong with the text, as the reader reports it; and it must read as if it were not
   // there.
   std::string damageOf( std::string const & text ) {
      fileIs( text );
      FeatureFiles::Reader fresh( directory_, report_ );
      EXPECT_TRUE( fresh.isEnabled( kToggle, kFile, true ) );
      EXPECT_FALSE( fresh.isEnabled( kToggle, kFile, false ) );
      EXPECT_EQ( reported_.size(), 1U );
      std::string line = reported_.empty() ? "" : reported_.back();
      reported_.clear();
      return line;
   }

   // The report about damage in a line.
   static constexpr int kNoLine = 0;

   std::string reportOf( int line, std::string const & what ) const {
      std::string const place = line == kNoLine ? "" : ':' + std::to_string( line );
      return ( directory_ / kFile ).string() + place + ": " + what +
             "; an object of booleans is expected, as in { \"SbdEvpnTcamOverrideRule\": false }; "
             "until "
             "then its toggles have their defaults";
   }

   fs::path const directory_ =
      fs::path( testing::TempDir() ) / ( "feature-files-" + std::to_string( getpid() ) );
   std::vector< std::string > reported_;
   FeatureFiles::Reader::Report const report_ = [ this ]( FeatureFiles::Damage const & damage ) {
      reported_.push_back( damage.text() );
   };
   FeatureFiles::Reader reader_{ directory_, report_ };
};

TEST_F( FeatureFilesReader, AreReportedAndNotReadWhenTheyAreHuge ) {
   fileIs( "{}" );
   fs::resize_file( directory_ / kFile, ( 16U << 20U ) + 1 );  // takes no room on the disk
   EXPECT_TRUE( reader_.isEnabled( kToggle, kFile, true ) );
   EXPECT_EQ( reported_, std::vector{ reportOf( kNoLine, "the file is larger than 16 MiB" ) } );
}

TEST_F( FeatureFilesReader, GiveATogglesValue ) {
   fileIs( R"({ "SbdEvpnTcamOverrideRule": false, "Other": true })" );
   EXPECT_FALSE( reader_.isEnabled( kToggle, kFile, true ) );
   EXPECT_TRUE( reader_.isEnabled( "Other", kFile, false ) );
   EXPECT_TRUE( reported_.empty() );
}

TEST_F( FeatureFilesReader, GiveTheDefaultWhereThereIsNoFile ) {
   EXPECT_TRUE( reader_.isEnabled( kToggle, kFile, true ) );
   EXPECT_FALSE( reader_.isEnabled( kToggle, kFile, false ) );
   EXPECT_TRUE( reported_.empty() );
}

TEST_F( FeatureFilesReader, GiveTheDefaultWhereThereIsNoDirectory ) {
   FeatureFiles::Reader nowhere( directory_ / "nowhere", report_ );
   EXPECT_TRUE( nowhere.isEnabled( kToggle, kFile, true ) );
   EXPECT_TRUE( reported_.empty() );
}

TEST_F( FeatureFilesReader, GiveTheDefaultForAToggleThatAFileDoesNotName ) {
   fileIs( R"({ "Other": false })" );
   EXPECT_TRUE( reader_.isEnabled( kToggle, kFile, true ) );
   EXPECT_FALSE( reader_.isEnabled( kToggle, kFile, false ) );
   EXPECT_TRUE( reported_.empty() );
}

TEST_F( FeatureFilesReader, TellTogglesThatNobodyHasAskedFor ) {
   fileIs( R"({ "SbdEvpnTcamOverideRule": false, "Other": true })" );
   EXPECT_TRUE( reader_.notAskedFor().empty() ) << "nobody has asked for the file";

   reader_.isEnabled( kToggle, kFile, true );
   reader_.isEnabled( "Other", kFile, true );

   auto const found = reader_.notAskedFor();
   ASSERT_EQ( found.size(), 1U );
   EXPECT_EQ( found[ 0 ].file, directory_ / kFile );
   EXPECT_EQ( found[ 0 ].name, "SbdEvpnTcamOverideRule" );
   EXPECT_EQ( found[ 0 ].asked, ( std::vector< std::string >{ "Other", kToggle } ) );
}

TEST_F( FeatureFilesReader, AreKeptApart ) {
   fileIs( R"({ "SbdEvpnTcamOverrideRule": false })" );
   EXPECT_FALSE( reader_.isEnabled( kToggle, kFile, true ) );
   EXPECT_TRUE( reader_.isEnabled( kToggle, "VornalL2.json", true ) );
}

TEST_F( FeatureFilesReader, CountAsTheyWereWhenFirstAskedFor ) {
   fileIs( R"({ "SbdEvpnTcamOverrideRule": false })" );
   EXPECT_FALSE( reader_.isEnabled( kToggle, kFile, true ) );
   fileIs( R"({ "SbdEvpnTcamOverrideRule": true })" );
   EXPECT_FALSE( reader_.isEnabled( kToggle, kFile, true ) );
}

TEST_F( FeatureFilesReader, ServeTheFacilityOfTheProcess ) {
   fileIs( R"({ "SbdEvpnTcamOverrideRule": false })" );
   FeatureToggle::facilityIs( &reader_ );
   EXPECT_FALSE( FeatureToggle::isEnabled( kToggle, kFile, true ) );
   FeatureToggle::facilityIs( nullptr );
}

TEST_F( FeatureFilesReader, AreReportedOnceWhenTheyAreNoJson ) {
   EXPECT_EQ( damageOf( "{\n  \"SbdEvpnTcamOverrideRule\": false,\n}\n" ),
              reportOf( 3, "this is not JSON" ) );
   EXPECT_EQ( damageOf( "{ \"SbdEvpnTcamOverrideRule\": fal" ), reportOf( 1, "this is not JSON" ) );
}

TEST_F( FeatureFilesReader, AreReportedWhenTheyAreEmpty ) {
   EXPECT_EQ( damageOf( "" ), reportOf( 1, "the file is empty" ) );
}

TEST_F( FeatureFilesReader, AreReportedWhenTheyAreNoObject ) {
   EXPECT_EQ( damageOf( "[ true ]" ), reportOf( 1, "this is of type array" ) );
   EXPECT_EQ( damageOf( "null" ), reportOf( 1, "this is of type null" ) );
}

TEST_F( FeatureFilesReader, AreReportedWhenAnyToggleIsNoBoolean ) {
   EXPECT_EQ( damageOf( "{\n  \"SbdEvpnTcamOverrideRule\": false,\n  \"Other\": \"no\"\n}\n" ),
              reportOf( 3, "'Other' is of type string" ) );
   EXPECT_EQ( damageOf( R"({ "SbdEvpnTcamOverrideRule": 0 })" ),
              reportOf( 1, "'SbdEvpnTcamOverrideRule' is of type number" ) );
}

TEST_F( FeatureFilesReader, AreReportedWhenTheyAreDirectories ) {
   fs::create_directory( directory_ / kFile );
   EXPECT_TRUE( reader_.isEnabled( kToggle, kFile, true ) );
   ASSERT_EQ( reported_.size(), 1U );
   EXPECT_EQ( reported_[ 0 ], reportOf( kNoLine, "this is no regular file" ) );
}

TEST_F( FeatureFilesReader, AreReportedAndNotWaitedForWhenTheyArePipesOrDevices ) {
   ASSERT_EQ( mkfifo( ( directory_ / kFile ).c_str(), 0600 ), 0 );
   EXPECT_TRUE( reader_.isEnabled( kToggle, kFile, true ) );
   fs::create_symlink( "/dev/zero", directory_ / "device.json" );
   EXPECT_TRUE( reader_.isEnabled( kToggle, "device.json", true ) );

   ASSERT_EQ( reported_.size(), 2U );
   EXPECT_EQ( reported_[ 0 ], reportOf( kNoLine, "this is no regular file" ) );
   EXPECT_NE( reported_[ 1 ].find( "this is no regular file" ), std::string::npos );
}

TEST_F( FeatureFilesReader, AreReportedWhenTheyAreLinksThatLeadNowhereInTheEnd ) {
   fs::create_symlink( kFile, directory_ / kFile );
   EXPECT_TRUE( reader_.isEnabled( kToggle, kFile, true ) );
   ASSERT_EQ( reported_.size(), 1U );
   EXPECT_EQ( reported_[ 0 ],
              reportOf( kNoLine, "the file cannot be read (Too many levels of symbolic links)" ) );
}

TEST_F( FeatureFilesReader, AreReportedWhenTheyHoldANumberThatNothingCanHold ) {
   EXPECT_EQ( damageOf( "{\n  \"a\":\n  1e999\n}" ), reportOf( 3, "this number is too large" ) );
   EXPECT_EQ( damageOf( R"({"a":1e999})" ), reportOf( 1, "this number is too large" ) );
}

TEST_F( FeatureFilesReader, AreReportedWhenTheyAreNestedWithoutEnd ) {
   EXPECT_EQ( damageOf( std::string( 1'000'000, '[' ) ), reportOf( 1, "this is not JSON" ) );
   EXPECT_EQ( damageOf( std::string( 1'000'000, '[' ) + std::string( 1'000'000, ']' ) ),
              reportOf( 1, "this is of type array" ) );
}

TEST_F( FeatureFilesReader, AreReportedInOneLineWhateverTheirNamesHold ) {
   EXPECT_EQ( damageOf( R"({ "a\nb": 1 })" ), reportOf( 1, R"('a\nb' is of type number)" ) );
}

TEST_F( FeatureFilesReader, AreReportedOnStandardErrorUnlessItIsSaidWhere ) {
   fileIs( "[]" );
   FeatureFiles::Reader plain( directory_ );
   testing::internal::CaptureStderr();
   EXPECT_TRUE( plain.isEnabled( kToggle, kFile, true ) );
   EXPECT_EQ( testing::internal::GetCapturedStderr(),
              reportOf( 1, "this is of type array" ) + '\n' );
}

}  // namespace
