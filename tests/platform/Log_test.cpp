// A log message is described once and logged as one exact line.
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

#include <Log/Log.h>

namespace LogTest {

using Log::Descriptor;
using Log::Handle;
using Log::Severity;
using Log::StandardAction;
using Lines = std::vector< std::string >;

Descriptor const full{ "MULTIHOMING_TCAM_RESOURCE_FULL", "No room for %s on unit %d.",
                       "The group is full.", StandardAction::ContactSupport, Severity::Warning };

class LogLines : public testing::Test {
 protected:
   LogLines() {
      Log::sinkIs( [ this ]( Log::Message const & message ) {
         lines.push_back( message.line );
         names.push_back( message.descriptor.name );
      } );
   }
   ~LogLines() override { Log::sinkIs( nullptr ); }

   Lines lines;
   Lines names;
};

TEST_F( LogLines, LineIsSeverityNameAndTheFormattedText ) {
   Handle const handle( full );
   handle.log( { "10.0.0.2", "1" } );
   EXPECT_EQ( lines,
              Lines{
                 "%VORNAL-4-MULTIHOMING_TCAM_RESOURCE_FULL: No room for 10.0.0.2 on unit 1." } );
   EXPECT_EQ( names, Lines{ "MULTIHOMING_TCAM_RESOURCE_FULL" } );
}

TEST_F( LogLines, EverySeverityHasItsNumber ) {
   for ( U8 n = 0; n <= 7; ++n ) {
      Handle const handle( { "EVENT", "It happened.", "", "", static_cast< Severity >( n ) } );
      handle.log();
      EXPECT_EQ( lines.back(), "%VORNAL-" + std::to_string( n ) + "-EVENT: It happened." );
   }
}

TEST_F( LogLines, ArgumentsAreNotReadAsFormats ) {
   Handle const handle( full );
   handle.log( { "%s", "%d" } );
   EXPECT_EQ( lines.back(),
              "%VORNAL-4-MULTIHOMING_TCAM_RESOURCE_FULL: No room for %s on unit %d." );
}

TEST_F( LogLines, OtherPercentSignsStand ) {
   Handle const handle( { "LOAD", "At 90% of %s", "", "", Severity::Notice } );
   handle.log( { "100%" } );
   EXPECT_EQ( lines.back(), "%VORNAL-5-LOAD: At 90% of 100%" );
}

TEST_F( LogLines, WrongNumberOfArgumentsIsAFailedAssertion ) {
   Handle const handle( full );
   EXPECT_EXIT( handle.log( { "10.0.0.2" } ), testing::KilledBySignal( SIGABRT ),
                "Assertion '\"a value for every %s and %d of the format\" && " );
   EXPECT_EXIT( handle.log( { "10.0.0.2", "1", "2" } ), testing::KilledBySignal( SIGABRT ),
                "Assertion '\"a %s or %d for every value\" && " );
}

TEST_F( LogLines, LinesGoToStandardErrorWhereThereIsNoSink ) {
   Log::sinkIs( nullptr );
   Handle const handle( { "EVENT", "It happened.", "", "", Severity::Error } );
   testing::internal::CaptureStderr();
   handle.log();
   EXPECT_EQ( testing::internal::GetCapturedStderr(), "%VORNAL-3-EVENT: It happened.\n" );
   EXPECT_EQ( lines, Lines{} );
}

TEST( LogDescriptors, AreRegisteredAsLongAsTheirHandlesLive ) {
   std::vector< Descriptor const * > const before = Log::descriptors();
   {
      Handle const first( full );
      Handle const second( { "EVENT", "It happened.", "why", "Do it.", Severity::Debug } );
      std::vector< Descriptor const * > expected = before;
      expected.push_back( &first.descriptor() );
      expected.push_back( &second.descriptor() );
      EXPECT_EQ( Log::descriptors(), expected );
      EXPECT_EQ( second.descriptor().explanation, "why" );
   }
   EXPECT_EQ( Log::descriptors(), before );
}

}  // namespace LogTest
