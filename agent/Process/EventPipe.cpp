#include <Process/EventPipe.h>

#include <algorithm>
#include <optional>
#include <stdexcept>

#include <Story/Codec.h>

namespace Process {

namespace {

constexpr std::string_view kMarker( "\xff\x16\x02\xff", 4 );  // 0xff stands in no UTF-8 text
constexpr std::size_t kHeader = kMarker.size() + 2 * sizeof( U32 );
// Longer than any event. Bytes that are no event cannot fill the memory.
constexpr U32 kLongestEvent = U32{ 1 } << 28U;

void put( std::string & frame, std::size_t at, U32 number ) {
   for ( std::size_t n = 0; n < sizeof number; ++n ) {
      frame[ at + n ] = static_cast< char >( number >> ( 8 * n ) );
   }
}

U32 numberAt( std::string_view frame, std::size_t at ) {
   U32 number = 0;
   for ( std::size_t n = 0; n < sizeof number; ++n ) {
      number |= static_cast< U32 >( static_cast< U8 >( frame[ at + n ] ) ) << ( 8 * n );
   }
   return number;
}

// The bytes can become a frame when more of them come.
bool isBeginning( std::string_view bytes ) {
   return kMarker.starts_with( bytes.substr( 0, kMarker.size() ) ) && bytes.size() < kHeader;
}

// The length of the event in the frame that begins here; nothing where none does.
std::optional< std::size_t > lengthOfFrame( std::string_view bytes ) {
   if ( !bytes.starts_with( kMarker ) || bytes.size() < kHeader ) {
      return std::nullopt;
   }
   U32 const length = numberAt( bytes, kMarker.size() );
   U32 const complement = numberAt( bytes, kMarker.size() + sizeof length );
   return length == ~complement && length <= kLongestEvent ? std::optional< std::size_t >( length )
                                                           : std::nullopt;
}

std::optional< Story::Event > eventIn( std::string_view bytes ) {
   try {
      return Story::decoded( bytes );
   } catch ( std::runtime_error const & ) {
      return std::nullopt;
   }
}

}  // namespace

bool EventSender::send( Story::Event const & event ) {
   frame_ = kMarker;
   frame_.resize( kHeader );
   Story::encodeInto( frame_, event );
   auto const length = static_cast< U32 >( frame_.size() - kHeader );
   put( frame_, kMarker.size(), length );
   put( frame_, kMarker.size() + sizeof length, ~length );
   return pipe_.write( frame_ );
}

void EventReceiver::read( TakeEvent const & takeEvent, TakeLine const & takeLine ) {
   bool const isAtEnd = !pipe_.readInto( bytes_ );
   std::string_view left = bytes_;
   while ( std::size_t const taken = takeFront( left, takeEvent, takeLine ) ) {
      left.remove_prefix( taken );
   }
   bytes_.erase( 0, bytes_.size() - left.size() );
   if ( isAtEnd ) {
      endLine( takeLine );
      pipe_.close();
   }
}

// Takes an event, or the bytes up to the next; returns how many bytes. 0 when more must come.
std::size_t EventReceiver::takeFront( std::string_view bytes, TakeEvent const & takeEvent,
                                      TakeLine const & takeLine ) {
   if ( bytes.empty() || isBeginning( bytes ) ) {
      return 0;
   }
   if ( auto const length = lengthOfFrame( bytes ) ) {
      if ( bytes.size() < kHeader + *length ) {
         return 0;
      }
      if ( auto const event = eventIn( bytes.substr( kHeader, *length ) ) ) {
         endLine( takeLine );
         takeEvent( *event );
         return kHeader + *length;
      }
   }
   std::size_t const next = std::min( bytes.find( kMarker.front(), 1 ), bytes.size() );
   takeNoise( bytes.substr( 0, next ), takeLine );
   return next;
}

void EventReceiver::takeNoise( std::string_view bytes, TakeLine const & takeLine ) {
   for ( char const c : bytes ) {
      if ( c == '\n' || line_.size() == longestLine_ ) {
         takeLine( line_ );
         line_.clear();
      }
      if ( c != '\n' ) {
         line_ += c;
      }
   }
}

void EventReceiver::endLine( TakeLine const & takeLine ) {
   if ( !line_.empty() ) {
      takeLine( line_ );
      line_.clear();
   }
}

}  // namespace Process
