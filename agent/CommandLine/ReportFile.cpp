#include <CommandLine/ReportFile.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <system_error>

#include <Process/SharedFolder.h>
#include <Process/WholeFile.h>
#include <Report/Page.h>
#include <Story/InputError.h>

#include <unistd.h>

namespace CommandLine {

namespace fs = std::filesystem;

namespace {

[[noreturn]] void refuse( fs::path const & file, std::string const & why ) {
   throw Story::InputError( "--report: " + file.string() + " " + why +
                            "; name a new file in a folder that takes files" );
}

// A file that is empty or the page of an earlier run can be replaced.
bool isReplaceable( fs::path const & file ) {
   std::string start( Report::kFirstLine.size(), '\0' );
   std::ifstream in( file, std::ios::binary );
   in.read( start.data(), static_cast< std::streamsize >( start.size() ) );
   return in.is_open() && ( in.gcount() == 0 || start == Report::kFirstLine );
}

// The file itself, at the end of links.
fs::path targetOf( fs::path const & file ) {
   std::error_code error;
   fs::path const target = fs::weakly_canonical( file, error );
   return error ? file : target;
}

void checkTarget( fs::path const & file ) {
   Process::refuseForeign( file );
   std::error_code error;
   auto const status = fs::status( targetOf( file ), error );
   if ( fs::is_directory( status ) ) {
      refuse( file, "is a folder" );
   }
   if ( fs::exists( status ) && !fs::is_regular_file( status ) ) {
      refuse( file, "is no regular file" );
   }
   if ( fs::exists( status ) && !isReplaceable( targetOf( file ) ) ) {
      refuse( file, "is there already, and is no report of an earlier run" );
   }
}

// Creates a file and removes it again, since permissions alone do not show whether this works.
void checkFolder( fs::path const & file ) {
   std::string probe = targetOf( file ).parent_path() / ".vornal-XXXXXX";
   int const fd = mkstemp( probe.data() );
   if ( fd < 0 ) {
      refuse( file, "cannot be written (" + std::generic_category().message( errno ) + ")" );
   }
   close( fd );
   unlink( probe.c_str() );
}

Report::Device deviceOf( Scenario::Model const & scenario ) {
   Report::Device device;
   for ( Scenario::SwitchUnit const & unit : scenario.device.units ) {
      device.units.push_back( { unit.number, unit.module } );
   }
   if ( scenario.forwarding ) {
      for ( Pelk::IntfId const & interface : scenario.forwarding->underlay ) {
         device.underlay.push_back( interface.stringValue() );
      }
   }
   return device;
}

}  // namespace

ReportFile::ReportFile( fs::path file, Scenario::Model const & scenario )
      : file_( std::move( file ) ), collector_( deviceOf( scenario ) ) {
   checkTarget( file_ );
   checkFolder( file_ );
}

void ReportFile::configure( Host::AgentConfig & config ) const {
   config.particulars.emplace();
   config.particulars->tables = Report::Collector::tables();
   config.particulars->frames = collector_.model().limits.explained;
}

// Another output of the run can have the same name.
void ReportFile::write() const {
   checkTarget( file_ );
   Process::writeWhole( targetOf( file_ ), Report::pageOf( collector_.model() ) );
}

}  // namespace CommandLine
