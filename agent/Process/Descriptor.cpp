#include <Process/Descriptor.h>

#include <array>
#include <cerrno>
#include <system_error>

#include <fcntl.h>
#include <unistd.h>

namespace Process {

void Descriptor::close() {
   if ( isOpen() ) {
      ::close( std::exchange( fd_, -1 ) );
   }
}

bool Descriptor::write( std::string_view text ) const {
   while ( !text.empty() ) {
      ssize_t const written = ::write( fd_, text.data(), text.size() );
      if ( written >= 0 ) {
         text.remove_prefix( static_cast< std::size_t >( written ) );
      } else if ( errno != EINTR ) {
         return false;
      }
   }
   return true;
}

bool Descriptor::readInto( std::string & text ) const {
   std::array< char, 65536 > buffer;
   ssize_t size = 0;
   do {
      size = ::read( fd_, buffer.data(), buffer.size() );
   } while ( size < 0 && errno == EINTR );
   if ( size > 0 ) {
      text.append( buffer.data(), static_cast< std::size_t >( size ) );
   }
   return size > 0;
}

Pipe pipeNew() {
   std::array< int, 2 > ends{};
   if ( pipe2( ends.data(), O_CLOEXEC ) != 0 ) {
      throwSystemError( "cannot make a pipe" );
   }
   return { Descriptor( ends[ 0 ] ), Descriptor( ends[ 1 ] ) };
}

void throwSystemError( std::string const & what ) {
   throw std::system_error( errno, std::generic_category(), what );
}

}  // namespace Process
