#include <CommandLine/OutputStream.h>

#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

#include <CommandLine/Terminal.h>
#include <Process/EndWatch.h>

#include <poll.h>
#include <unistd.h>

namespace CommandLine {

namespace {

constexpr std::size_t kMostPending = 65536;

// " (/mnt/report.txt)", the file of the descriptor; empty for a pipe and the like.
std::string fileBehind( int fd ) {
   std::error_code error;
   auto const file =
      std::filesystem::read_symlink( "/proc/self/fd/" + std::to_string( fd ), error ).string();
   return file.starts_with( '/' ) ? " (" + file + ")" : "";
}

// Waits for the reader of a non-blocking descriptor.
void awaitRoom( int fd ) {
   pollfd room{ fd, POLLOUT, 0 };
   poll( &room, 1, -1 );
}

}  // namespace

OutputStream::OutputStream( int fd, std::string name )
      : std::ostream( nullptr ), buffer_( fd, std::move( name ) ) {
   rdbuf( &buffer_ );
   // Let the buffer's exceptions pass through the stream instead of becoming its state.
   exceptions( std::ios::badbit );
}

OutputStream::Buffer::Buffer( int fd, std::string name )
      : fd_( fd ), name_( std::move( name ) ), isTerminal_( isTerminal( fd ) ) {}

OutputStream::Buffer::int_type OutputStream::Buffer::overflow( int_type c ) {
   if ( !traits_type::eq_int_type( c, traits_type::eof() ) ) {
      char const one = traits_type::to_char_type( c );
      put( { &one, 1 } );
   }
   return traits_type::not_eof( c );
}

std::streamsize OutputStream::Buffer::xsputn( char const * text, std::streamsize size ) {
   put( { text, static_cast< std::size_t >( size ) } );
   return size;
}

int OutputStream::Buffer::sync() {
   // Text that failed once is not written again.
   writeAll( std::exchange( pending_, {} ) );
   return 0;
}

void OutputStream::Buffer::put( std::string_view text ) {
   pending_ += text;
   bool const isLineAtTerminal = isTerminal_ && text.find( '\n' ) != std::string_view::npos;
   if ( pending_.size() >= kMostPending || isLineAtTerminal ) {
      sync();
   }
}

void OutputStream::Buffer::writeAll( std::string_view text ) {
   while ( !text.empty() ) {
      ssize_t const written = ::write( fd_, text.data(), text.size() );
      if ( written >= 0 ) {
         Process::EndWatch::noteOutput();
         text.remove_prefix( static_cast< std::size_t >( written ) );
      } else if ( errno == EAGAIN ) {
         awaitRoom( fd_ );
      } else if ( errno != EINTR ) {
         fail( errno );
      }
   }
}

void OutputStream::Buffer::fail( int reason ) const {
   // A descriptor that is not open has no file.
   std::string const file = reason == EBADF ? "" : fileBehind( fd_ );
   throw OutputError( "cannot write " + name_ + file + ": " +
                      std::generic_category().message( reason ) + "; its content is not complete" );
}

}  // namespace CommandLine
