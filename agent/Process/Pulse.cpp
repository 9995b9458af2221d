#include <Process/Pulse.h>

#include <atomic>

#include <Process/Descriptor.h>

#include <sys/mman.h>

namespace Process {

Pulse::Pulse() {
   void * const memory =
      mmap( nullptr, sizeof( U64 ), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0 );
   if ( memory == MAP_FAILED ) {
      throwSystemError( "cannot share memory with the process of the agent" );
   }
   count_ = static_cast< U64 * >( memory );
}

Pulse::~Pulse() {
   munmap( count_, sizeof( U64 ) );
}

void Pulse::beat() {
   std::atomic_ref< U64 >( *count_ ).fetch_add( 1, std::memory_order_relaxed );
}

U64 Pulse::beats() const {
   return std::atomic_ref< U64 >( *count_ ).load( std::memory_order_relaxed );
}

}  // namespace Process
