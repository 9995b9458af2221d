#include <Steps/Capture.h>

#include <fmt/format.h>

#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Steps/Context.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

void readFile( Reading & reading, Value const & value, Capture & capture ) {
   auto const name = stringOf( reading, value );
   if ( !name ) {
      return;
   }
   capture.file = reading.fileNamed( reading.directory() / *name );
   std::error_code error;
   if ( !std::filesystem::is_regular_file( capture.file, error ) ) {
      reading.problem( value.line, "capture is " + Scenario::pathInQuotes( *name ) +
                                      ", which is no file; a capture is expected, relative to the "
                                      "scenario's file" );
   }
}

void readOn( Reading & reading, Value const & value, Capture & capture ) {
   if ( auto const intf = intfOf( reading, value ) ) {
      capture.on = *intf;
   }
}

Scenario::Table< Capture > const & captureTable() {
   static Scenario::Table< Capture > const table{
      { "frames", "The frames of a capture come in, one after the other." },
      { { { "capture", "capture: ../captures/fabric-v4.pcap",
            Shape::of( "text", "The capture's file, relative to this one." ) },
          readFile },
        { { "on", "on: Ethernet49",
            Shape::of( "segment-interface", "The interface that they come in on." ) },
          readOn } }
   };
   return table;
}

}  // namespace

std::vector< WordList > Capture::vocabulary() {
   return { captureTable().list() };
}

void Capture::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, captureTable(), *this );
}

std::string Capture::description() const {
   return fmt::format( "the frames of {} on {}", file.filename().string(), Quelm::textOf( on ) );
}

void Capture::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] { context.traffic.injectCapture( file, on ); } );
}

}  // namespace Steps
