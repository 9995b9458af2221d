#include <Process/RingMemory.h>

#include <cerrno>

#include <Process/Descriptor.h>
#include <Quelm/Error.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

namespace Process {

namespace {

constexpr std::size_t kSize = Trace::Ring::sizeFor( RingMemory::kLines );

// A file of the ring's size, all of it backed by disk: a full disk shows here and not in the middle
// of a run.
Descriptor openFile( std::filesystem::path const & file ) {
   Descriptor opened( open( file.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0644 ) );
   if ( !opened.isOpen() ) {
      failed( "cannot write the trace ring " + file.string() );
   }
   errno = posix_fallocate( opened.fd(), 0, static_cast< off_t >( kSize ) );
   if ( errno != 0 ) {
      failed( "cannot write the trace ring " + file.string() );
   }
   return opened;
}

}  // namespace

RingMemory::RingMemory( std::optional< std::filesystem::path > const & file ) {
   Descriptor const opened = file ? openFile( *file ) : Descriptor();
   void * const memory = mmap( nullptr, kSize, PROT_READ | PROT_WRITE,
                               MAP_SHARED | ( file ? 0 : MAP_ANONYMOUS ), opened.fd(), 0 );
   if ( memory == MAP_FAILED ) {
      failed( "cannot map the trace ring" + ( file ? " " + file->string() : "" ) );
   }
   bytes_ = { static_cast< std::byte * >( memory ), kSize };
}

RingMemory::~RingMemory() {
   munmap( bytes_.data(), bytes_.size() );
}

std::vector< Story::TraceLine > lastLines( std::span< std::byte const > ring, std::size_t most ) {
   std::vector< Story::TraceLine > result;
   try {
      auto const lines = Trace::Ring::decode( ring );
      std::size_t const first = lines.size() > most ? lines.size() - most : 0;
      for ( std::size_t n = first; n < lines.size(); ++n ) {
         result.push_back( { lines[ n ].handle, lines[ n ].level, lines[ n ].text } );
      }
   } catch ( Quelm::TextError const & ) {
      // No ring has been made in the memory: nothing was traced.
   }
   return result;
}

}  // namespace Process
