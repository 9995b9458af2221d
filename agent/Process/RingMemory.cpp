#include <Process/RingMemory.h>

#include <cerrno>
#include <tuple>

#include <Process/SharedFolder.h>
#include <Quelm/Error.h>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Process {

namespace {

namespace fs = std::filesystem;

constexpr std::size_t kSize = Trace::Ring::sizeFor( RingMemory::kLines );

[[noreturn]] void cannotWrite( fs::path const & file ) {
   throwSystemError( "cannot write the trace ring " + file.string() );
}

[[noreturn]] void refuse( fs::path const & file, std::string const & why ) {
   throw Quelm::Error( "--ring: " + file.string() + " " + why +
                       "; name a new file, or the ring of a run that is over" );
}

std::span< std::byte > mapped( Descriptor const & file, std::size_t size ) {
   int const flags = MAP_SHARED | ( file.isOpen() ? 0 : MAP_ANONYMOUS );
   void * const memory = mmap( nullptr, size, PROT_READ | PROT_WRITE, flags, file.fd(), 0 );
   if ( memory == MAP_FAILED ) {
      throwSystemError( "there is not enough memory for the trace ring" );
   }
   return { static_cast< std::byte * >( memory ), size };
}

// Opens the file, and creates it if necessary. Does not wait for a pipe or a device.
Descriptor openedWith( int flags, fs::path const & file ) {
   return Descriptor(
      open( file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NONBLOCK | flags, 0644 ) );
}

struct OpenFile {
   Descriptor file;
   bool isNew;  // this call has created it
};

// Opens the file, and locks it: nobody else may use it as a ring.
OpenFile opened( fs::path const & file ) {
   int const flags = flagsToOpen( file );
   Descriptor opened = openedWith( O_EXCL, file );
   bool const isNew = opened.isOpen();
   if ( !isNew ) {
      opened = openedWith( flags, file );
   }
   struct stat status {};
   if ( !opened.isOpen() && errno != EISDIR ) {
      cannotWrite( file );
   }
   if ( !opened.isOpen() || fstat( opened.fd(), &status ) != 0 || !S_ISREG( status.st_mode ) ) {
      refuse( file, "is no regular file" );
   }
   if ( flock( opened.fd(), LOCK_EX | LOCK_NB ) != 0 ) {
      if ( errno != EWOULDBLOCK ) {
         cannotWrite( file );
      }
      refuse( file, "is the ring of a run that goes on" );
   }
   return { std::move( opened ), isNew };
}

std::size_t sizeOf( Descriptor const & file ) {
   struct stat status {};
   return fstat( file.fd(), &status ) == 0 ? static_cast< std::size_t >( status.st_size ) : 0;
}

// Makes the disk back all of the file. So a full disk shows here and not during the run, and leaves
// the file absent or empty as before.
void extend( OpenFile const & opened, fs::path const & file ) {
   int const error = posix_fallocate( opened.file.fd(), 0, static_cast< off_t >( kSize ) );
   if ( error != 0 ) {
      std::ignore = opened.isNew ? unlink( file.c_str() ) : ftruncate( opened.file.fd(), 0 );
      errno = error;
      cannotWrite( file );
   }
}

bool isRing( std::span< std::byte const > bytes ) {
   try {
      Trace::Ring::decode( bytes );
      return true;
   } catch ( Quelm::TextError const & ) {
      return false;
   }
}

// Copies the memory into memory that this process can certainly read.
std::vector< std::byte > copyOf( std::span< std::byte const > bytes ) {
   Descriptor const copy( memfd_create( "ring", MFD_CLOEXEC ) );
   ssize_t const written = write( copy.fd(), bytes.data(), bytes.size() );
   std::vector< std::byte > result( written < 0 ? 0 : static_cast< std::size_t >( written ) );
   ssize_t const read = pread( copy.fd(), result.data(), result.size(), 0 );
   result.resize( read < 0 ? 0 : static_cast< std::size_t >( read ) );
   return result;
}

}  // namespace

RingMemory::RingMemory( std::optional< fs::path > const & file ) {
   if ( !file ) {
      bytes_ = mapped( file_, kSize );
      return;
   }
   OpenFile taken = opened( *file );
   std::size_t const size = sizeOf( taken.file );
   if ( size == 0 ) {
      extend( taken, *file );
   }
   file_ = std::move( taken.file );
   bytes_ = mapped( file_, size == 0 ? kSize : size );
   if ( size != 0 && !isRing( bytes_ ) ) {
      munmap( bytes_.data(), bytes_.size() );
      refuse( *file, "holds something else" );
   }
   Trace::Ring const empty( bytes_ );
}

RingMemory::~RingMemory() {
   munmap( bytes_.data(), bytes_.size() );
}

// The kernel reports that memory has gone; reading it would stop this process.
bool isWhole( std::span< std::byte const > ring ) {
   return copyOf( ring ).size() == ring.size();
}

std::vector< Story::Traced > lastLines( std::span< std::byte const > ring, std::size_t most ) {
   std::vector< Story::Traced > result;
   try {
      auto const lines = Trace::Ring::decode( copyOf( ring ) );
      std::size_t const first = lines.size() > most ? lines.size() - most : 0;
      for ( std::size_t n = first; n < lines.size(); ++n ) {
         result.push_back( { lines[ n ].handle, lines[ n ].level, lines[ n ].text } );
      }
   } catch ( Quelm::TextError const & ) {
      // The memory holds no ring: nothing was traced.
   }
   return result;
}

}  // namespace Process
