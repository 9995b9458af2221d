#include <Trace/Ring.h>

#include <algorithm>
#include <atomic>
#include <cstring>

#include <Kiv/Activity.h>
#include <Quelm/Error.h>

namespace Trace {

namespace {

constexpr U64 kMark = 0x474e495245434152;
constexpr U32 kVersion = 2;

struct Header {
   U64 mark;
   U32 version;
   U32 slotSize;
   U64 slots;
};

struct Slot {
   U64 state;  // 0: empty or being written; n + 1: line n is complete
   S64 time;
   U8 level;
   U8 isCut;
   U16 textSize;
   U32 step;
   char handle[ 28 ];  // zero-terminated
   char text[ Ring::kSlotSize - 52 ];
};

static_assert( sizeof( Slot ) == Ring::kSlotSize && sizeof( Header ) <= Ring::kSlotSize );

S64 timeNow() {
   return Kiv::hasActivityManager() ? Kiv::System::currentTime().count() : 0;
}

Ring::Decoded decoded( Slot const & slot ) {
   std::size_t const size = std::min< std::size_t >( slot.textSize, sizeof slot.text );
   std::string_view const handle( slot.handle, sizeof slot.handle );
   return { slot.state - 1,
            slot.time,
            slot.step,
            slot.level,
            slot.isCut != 0,
            std::string( handle.substr( 0, handle.find( '\0' ) ) ),
            std::string( slot.text, size ) };
}

}  // namespace

Ring::Ring( std::span< std::byte > memory )
      : memory_( memory ), slots_( memory.size() / kSlotSize ) {
   if ( slots_ < 2 || reinterpret_cast< std::uintptr_t >( memory.data() ) % alignof( Slot ) != 0 ) {
      throw Quelm::RangeError( "a trace ring needs at least " + std::to_string( sizeFor( 1 ) ) +
                               " bytes, aligned to " + std::to_string( alignof( Slot ) ) );
   }
   --slots_;
   std::memset( memory_.data(), 0, memory_.size() );
   Header const header{ kMark, kVersion, kSlotSize, slots_ };
   std::memcpy( memory_.data(), &header, sizeof header );
}

void Ring::lineNew( Line const & line ) {
   std::byte * const place = memory_.data() + ( 1 + next_ % slots_ ) * kSlotSize;
   auto * const state = reinterpret_cast< U64 * >( place );
   std::atomic_ref< U64 >( *state ).store( 0, std::memory_order_relaxed );
   // Keeps the compiler from writing the new line before the mark; the processor stops in order.
   std::atomic_signal_fence( std::memory_order_release );

   Slot slot{};
   std::size_t const size = std::min( line.text.size(), sizeof slot.text );
   slot.time = timeNow();
   slot.step = step_;
   slot.level = static_cast< U8 >( line.level );
   slot.isCut = size < line.text.size();
   slot.textSize = static_cast< U16 >( size );
   line.handle.copy( slot.handle, sizeof slot.handle - 1 );
   line.text.copy( slot.text, size );
   std::memcpy( place + sizeof slot.state,
                reinterpret_cast< std::byte * >( &slot ) + sizeof slot.state,
                kSlotSize - sizeof slot.state );

   std::atomic_ref< U64 >( *state ).store( ++next_, std::memory_order_release );
}

std::vector< Ring::Decoded > Ring::decode( std::span< std::byte const > memory ) {
   Header header{};
   if ( memory.size() >= kSlotSize ) {
      std::memcpy( &header, memory.data(), sizeof header );
   }
   if ( header.mark != kMark || header.version != kVersion || header.slotSize != kSlotSize ||
        header.slots != memory.size() / kSlotSize - 1 ) {
      throw Quelm::TextError( "not a trace ring of version " + std::to_string( kVersion ) );
   }
   std::vector< Decoded > lines;
   for ( U64 at = 0; at < header.slots; ++at ) {
      Slot slot;
      std::memcpy( &slot, memory.data() + ( at + 1 ) * kSlotSize, sizeof slot );
      if ( slot.state != 0 ) {
         lines.push_back( decoded( slot ) );
      }
   }
   std::sort( lines.begin(), lines.end(),
              []( Decoded const & a, Decoded const & b ) { return a.number < b.number; } );
   return lines;
}

}  // namespace Trace
