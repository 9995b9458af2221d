#include <CommandLine/Ring.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <vector>

#include <fmt/format.h>

#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Process/Interruption.h>
#include <Quelm/Error.h>
#include <Story/InputError.h>
#include <Story/JsonForms.h>
#include <Text/Printable.h>
#include <Trace/Ring.h>

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace CommandLine {

namespace {

namespace fs = std::filesystem;
using Lines = std::vector< Trace::Ring::Decoded >;

[[noreturn]] void refuseRing( fs::path const & file, std::string const & why ) {
   throw Story::InputError( file.string() + ": " + why +
                            "; name one that 'run --ring' has written" );
}

[[noreturn]] void cannotRead( fs::path const & file ) {
   refuseRing( file, fmt::format( "the file cannot be read ({})", std::strerror( errno ) ) );
}

std::string contentOf( Process::Descriptor const & descriptor, fs::path const & file ) {
   constexpr std::size_t kChunk = 65536;
   constexpr std::size_t kLargest = std::size_t{ 64 } << 20U;  // a ring of a run has one MiB
   std::array< char, kChunk > chunk{};
   std::string content;
   ssize_t count = 1;
   while ( count > 0 ) {
      count =
         pread( descriptor.fd(), chunk.data(), kChunk, static_cast< off_t >( content.size() ) );
      if ( count < 0 ) {
         cannotRead( file );
      }
      content.append( chunk.data(), static_cast< std::size_t >( count ) );
      if ( content.size() > kLargest ) {
         refuseRing( file, "this is larger than the 64 MiB that a trace ring may have" );
      }
   }
   return content;
}

Lines linesIn( Process::Descriptor const & descriptor, fs::path const & file ) {
   try {
      std::string const content = contentOf( descriptor, file );
      return Trace::Ring::decode( std::as_bytes( std::span( content ) ) );
   } catch ( Quelm::TextError const & error ) {
      refuseRing( file, error.what() );
   }
}

// The run holds the file's lock until it is over.
bool isOver( Process::Descriptor const & file ) {
   bool const isFree = flock( file.fd(), LOCK_SH | LOCK_NB ) == 0;
   if ( isFree ) {
      flock( file.fd(), LOCK_UN );
   }
   return isFree;
}

std::string textOf( Trace::Ring::Decoded const & line ) {
   constexpr S64 kSecond = 1'000'000'000;
   return fmt::format( "{:>8} {:>6}.{:09} {:>4} {} {}: {}{}\n", line.number, line.time / kSecond,
                       line.time % kSecond, line.step, Text::printable( line.handle ), line.level,
                       Text::printable( line.text ), line.isCut ? " ..." : "" );
}

Story::Json jsonOf( Trace::Ring::Decoded const & line ) {
   return { { "number", line.number }, { "time", line.time },   { "step", line.step },
            { "handle", line.handle }, { "level", line.level }, { "text", line.text },
            { "isCut", line.isCut } };
}

}  // namespace

void Ring::declare( CLI::App & app ) {
   value( app, "FILE", file_, "The file that 'run --ring' has written" )
      .required()
      .type( "FILE" )
      .check( problemOfName );
   flag( app, "--json", isJson_,
         "Print one JSON document instead of text; with --follow, a line of JSON for each "
         "line" );
   flag( app, "--follow", isFollowing_,
         "Go on with the lines of a run that goes on, until it is over" );
}

Process::Descriptor Ring::opened() const {
   Process::Descriptor file( open( file_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC ) );
   struct stat about {};
   if ( !file.isOpen() || fstat( file.fd(), &about ) != 0 ) {
      cannotRead( file_ );
   }
   if ( !S_ISREG( about.st_mode ) ) {
      refuseRing( file_, "this is no regular file" );
   }
   return file;
}

void Ring::print( Process::Descriptor const & file, std::ostream & out ) const {
   Lines const lines = linesIn( file, file_ );
   if ( isJson_ ) {
      Story::Json document{ { "lines", Story::Json::array() } };
      for ( auto const & line : lines ) {
         document[ "lines" ].push_back( jsonOf( line ) );
      }
      out << Story::documentText( document );
      return;
   }
   for ( auto const & line : lines ) {
      out << textOf( line );
   }
}

Story::ExitCode Ring::follow( Process::Descriptor const & file, std::ostream & out ) const {
   constexpr int kPause = 100;  // milliseconds
   Process::Interruption const interruption;
   U64 next = 0;
   for ( bool isLast = false; !isLast && interruption.signal() == 0; ) {
      isLast = isOver( file );
      for ( auto const & line : linesIn( file, file_ ) ) {
         if ( line.number >= next ) {
            next = line.number + 1;
            out << ( isJson_ ? Story::lineText( jsonOf( line ) ) : textOf( line ) );
         }
      }
      out.flush();
      if ( !isLast ) {
         poll( nullptr, 0, kPause );
      }
   }
   return interruption.signal() == 0 ? Story::ExitCode::Held
                                     : Story::exitCodeOf( interruption.signal() );
}

Story::ExitCode Ring::perform( std::ostream & out ) {
   Process::Descriptor const file = opened();
   if ( isFollowing_ ) {
      return follow( file, out );
   }
   print( file, out );
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
