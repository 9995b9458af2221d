#include <CommandLine/CaptureFolder.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <system_error>
#include <vector>

#include <Capture/PortCaptures.h>
#include <Process/SharedFolder.h>
#include <Quelm/Error.h>
#include <Steps/Capture.h>

#include <unistd.h>

namespace CommandLine {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuse( std::string const & reason ) {
   throw Quelm::Error( "--pcap-out: " + reason );
}

void make( fs::path const & folder ) {
   Process::refuseForeign( folder );
   std::error_code error;
   fs::create_directories( folder, error );
   if ( error ) {
      refuse( folder.string() + " is no folder and cannot be created (" + error.message() +
              "); name a folder that takes files" );
   }
}

// Creates a file and removes it again, since permissions alone do not show whether this works.
void checkTakesFiles( fs::path const & folder ) {
   std::string probe = folder / ".vornal-XXXXXX";
   int const fd = mkstemp( probe.data() );
   if ( fd < 0 ) {
      refuse( "no file can be created in " + folder.string() + " (" +
              std::generic_category().message( errno ) + "); name a folder that takes files" );
   }
   close( fd );
   unlink( probe.c_str() );
}

std::vector< fs::path > capturesIn( fs::path const & folder ) {
   std::vector< fs::path > captures;
   std::error_code error;
   for ( auto const & entry : fs::directory_iterator( folder, error ) ) {
      if ( Chip::PortCaptures::isPortCapture( entry.path() ) ) {
         captures.push_back( entry.path() );
      }
   }
   if ( error ) {
      refuse( folder.string() + " cannot be read (" + error.message() +
              "); name a folder that can be read" );
   }
   return captures;
}

// A capture that the scenario plays must not be removed, or written while it is read.
void checkNotPlayed( fs::path const & capture, Scenario::Model const & scenario ) {
   for ( Scenario::Step const & step : scenario.steps ) {
      auto const * const played = step.as< Steps::Capture >();
      std::error_code notThere;
      if ( played && fs::equivalent( played->file, capture, notThere ) ) {
         refuse( capture.string() + " is played by the scenario, in line " +
                 std::to_string( step.line ) + "; name another folder" );
      }
   }
}

// A capture of an earlier run begins with the magic number of captures, or is empty if the disk was
// full. Any other file with such a name belongs to the user: a scenario, a trace ring, a folder.
void checkIsCapture( fs::path const & file ) {
   constexpr U32 microseconds = 0xa1b2c3d4;
   constexpr U32 nanoseconds = 0xa1b23c4d;
   bool isCapture = false;
   if ( fs::is_regular_file( file ) ) {
      std::array< char, sizeof( U32 ) > start{};
      std::ifstream in( file, std::ios::binary );
      in.read( start.data(), start.size() );
      U32 number = 0;
      std::memcpy( &number, start.data(), start.size() );
      isCapture =
         in.is_open() && ( in.gcount() == 0 || number == microseconds || number == nanoseconds );
   }
   if ( !isCapture ) {
      refuse( file.string() +
              " has the name of a port's capture and is none; name another folder" );
   }
}

void discard( fs::path const & capture ) {
   std::error_code error;
   fs::remove( capture, error );
   if ( error ) {
      refuse( capture.string() + " is of an earlier run and cannot be removed (" + error.message() +
              "); name another folder" );
   }
}

}  // namespace

std::optional< fs::path > captureFolder( std::optional< fs::path > const & asked,
                                         Scenario::Model const & scenario ) {
   if ( asked ) {
      make( *asked );
      checkTakesFiles( *asked );
      auto const captures = capturesIn( *asked );
      for ( fs::path const & capture : captures ) {
         checkNotPlayed( capture, scenario );
         checkIsCapture( capture );
      }
      for ( fs::path const & capture : captures ) {
         discard( capture );
      }
   }
   return asked;
}

}  // namespace CommandLine
