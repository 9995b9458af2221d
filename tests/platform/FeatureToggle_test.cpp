// A toggle is what the facility in use says, and its default where there is none. The rules that
// every facility keeps to are shown on a small one.
#include <gtest/gtest.h>

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include <FeatureToggle/FeatureToggle.h>

namespace FeatureToggleTest {

// Feature files in memory; one without contents is damaged.
class Files : public FeatureToggle::Facility {
 public:
   using Contents = std::map< std::string, bool >;

   bool isEnabled( std::string const & name, std::string const & file,
                   bool defaultValue ) override {
      auto const found = files.find( file );
      if ( found == files.end() ) {
         return defaultValue;
      }
      if ( !found->second ) {
         if ( damaged_.insert( file ).second ) {
            reports.push_back( file + " is damaged" );
         }
         return defaultValue;
      }
      auto const toggle = found->second->find( name );
      return toggle == found->second->end() ? defaultValue : toggle->second;
   }

   std::map< std::string, std::optional< Contents > > files;
   std::vector< std::string > reports;

 private:
   std::set< std::string > damaged_;
};

class FeatureToggles : public testing::Test {
 protected:
   FeatureToggles() { FeatureToggle::facilityIs( &files ); }
   ~FeatureToggles() override { FeatureToggle::facilityIs( nullptr ); }

   static std::string bothDefaults( std::string const & name, std::string const & file ) {
      std::string result;
      for ( bool const byDefault : { false, true } ) {
         result += FeatureToggle::isEnabled( name, file, byDefault ) ? "on " : "off ";
      }
      return result;
   }

   Files files;
};

TEST_F( FeatureToggles, ToggleThatAFileNamesIsWhatTheFileSays ) {
   files.files[ "VornalL3.json" ] = { { "SbdEvpnTcamOverrideRule", false }, { "Other", true } };
   EXPECT_EQ( bothDefaults( "SbdEvpnTcamOverrideRule", "VornalL3.json" ), "off off " );
   EXPECT_EQ( bothDefaults( "Other", "VornalL3.json" ), "on on " );
}

TEST_F( FeatureToggles, ToggleThatTheFileDoesNotNameHasItsDefault ) {
   files.files[ "VornalL3.json" ] = { { "Other", true } };
   EXPECT_EQ( bothDefaults( "SbdEvpnTcamOverrideRule", "VornalL3.json" ), "off on " );
}

TEST_F( FeatureToggles, EveryToggleOfAMissingFileHasItsDefault ) {
   EXPECT_EQ( bothDefaults( "SbdEvpnTcamOverrideRule", "VornalL3.json" ), "off on " );
   EXPECT_TRUE( files.reports.empty() );
}

TEST_F( FeatureToggles, DamagedFileReadsAsMissingAndIsReportedOnce ) {
   files.files[ "VornalL3.json" ] = std::nullopt;
   EXPECT_EQ( bothDefaults( "SbdEvpnTcamOverrideRule", "VornalL3.json" ), "off on " );
   EXPECT_EQ( bothDefaults( "Other", "VornalL3.json" ), "off on " );
   EXPECT_EQ( files.reports, std::vector< std::string >{ "VornalL3.json is damaged" } );
}

TEST_F( FeatureToggles, WithoutAFacilityEveryToggleHasItsDefault ) {
   files.files[ "VornalL3.json" ] = { { "Other", true } };
   FeatureToggle::facilityIs( nullptr );
   EXPECT_EQ( bothDefaults( "Other", "VornalL3.json" ), "off on " );
}

}  // namespace FeatureToggleTest
