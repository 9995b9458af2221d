// Events reach the other process as they were sent, whatever stands between them; any bytes are
// events and lines, the same ones however they are cut. Each event has one form in bytes, and a
// form in JSON. For libFuzzer; fuzz/README.md has the command.
//
// The input is a list of pieces: an event that is sent, an event with other bytes, text of a
// plug-in, any bytes.
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <nlohmann/json.hpp>

#include <OneOfEach.h>
#include <Pieces.h>
#include <Process/EventPipe.h>
#include <Property.h>
#include <Story/Codec.h>
#include <Story/JsonForms.h>

namespace {

using Fuzz::mustHold;
using Fuzz::Pieces;

constexpr std::size_t kLongestLine = 64;
constexpr std::size_t kFrame = 12;  // the bytes around an event

// What arrives: events by their bytes, and lines.
struct Arrival {
   bool isEvent;
   std::string bytes;

   friend bool operator==( Arrival const &, Arrival const & ) = default;
};
using Arrivals = std::vector< Arrival >;

// --- One event

void checkEvent( Story::Event const & event ) {
   std::string const bytes = Story::encoded( event );
   mustHold( Story::encoded( Story::decoded( bytes ) ) == bytes, "an event is read back" );
   auto const json = nlohmann::json::parse( Story::lineText( jsonOf( event ) ), nullptr, false );
   mustHold( json.is_object() && json.contains( "event" ), "an event is a JSON object" );
}

// Each event has one form: what is read from these bytes has no others.
void checkForm( std::string_view bytes ) {
   try {
      mustHold( Story::encoded( Story::decoded( bytes ) ) == bytes, "an event has one form" );
   } catch ( std::runtime_error const & error ) {
      mustHold( !std::string_view( error.what() ).empty(), "a refusal says why" );
   }
}

// --- The pipe

// Sends the bytes, so many at a time.
Arrivals received( std::string_view bytes, std::size_t atOnce ) {
   Arrivals all;
   Process::Pipe pipe = Process::pipeNew();
   Process::EventReceiver receiver( std::move( pipe.out ), kLongestLine );
   auto const read = [ & ] {
      receiver.read(
         [ & ]( Story::Event const & event ) {
            checkEvent( event );
            all.push_back( { true, Story::encoded( event ) } );
         },
         [ & ]( std::string const & line ) {
            all.push_back( { false, line } );
         } );
   };
   for ( ; !bytes.empty(); bytes.remove_prefix( std::min( atOnce, bytes.size() ) ) ) {
      mustHold( pipe.in.write( bytes.substr( 0, atOnce ) ), "a pipe takes bytes" );
      read();
   }
   pipe.in.close();
   while ( receiver.pipe().isOpen() ) {
      read();
   }
   return all;
}

std::string framed( std::string_view event ) {
   std::string frame( "\xff\x16\x02\xff", 4 );
   auto const length = static_cast< std::uint32_t >( event.size() );
   for ( std::uint32_t const number : { length, ~length } ) {
      for ( unsigned shift = 0; shift < 32; shift += 8 ) {
         frame += static_cast< char >( number >> shift );
      }
   }
   return frame + std::string( event );
}

// --- The input

class Stream {
 public:
   explicit Stream( Pieces & pieces ) {
      while ( !pieces.isOver() ) {
         switch ( pieces.below( 4 ) ) {
         case 0: addEvent( pieces ); break;
         case 1: addOtherEvent( pieces ); break;
         case 2: addText( pieces ); break;
         default: addAny( pieces );
         }
      }
      endLine();
   }

   std::string const & bytes() const { return bytes_; }
   // Nothing when bytes that are no text can look like a part of an event.
   std::optional< Arrivals > const & expected() const { return expected_; }

 private:
   static std::string const & anExample( Pieces & pieces ) {
      static std::vector< std::string > const all = [] {
         std::vector< std::string > examples;
         for ( Story::Event const & event : OneOfEach::events() ) {
            examples.push_back( Story::encoded( event ) );
         }
         return examples;
      }();
      return pieces.oneOf( all );
   }
   static std::string someBytes( Pieces & pieces ) {
      auto const bytes = pieces.bytes( pieces.byte() );
      return { bytes.begin(), bytes.end() };
   }

   void addEvent( Pieces & pieces ) {
      std::string const & event = anExample( pieces );
      bytes_ += framed( event );
      endLine();
      if ( expected_ ) {
         expected_->push_back( { true, event } );
      }
   }
   // An example with some bytes in place of its own.
   void addOtherEvent( Pieces & pieces ) {
      std::string event = anExample( pieces );
      std::size_t const at = pieces.number( 2 ) % ( event.size() + 1 );
      std::size_t const less = pieces.byte();
      event.replace( at, less, someBytes( pieces ) );
      checkForm( event );
      bytes_ += framed( event );
      expected_.reset();
   }
   void addText( Pieces & pieces ) {
      for ( char c : someBytes( pieces ) ) {
         c = c == '\xff' ? '\n' : c;
         bytes_ += c;
         if ( c == '\n' || line_.size() == kLongestLine ) {
            addLine();
         }
         line_ += c == '\n' ? "" : std::string( 1, c );
      }
   }
   void addAny( Pieces & pieces ) {
      std::string const bytes = someBytes( pieces );
      checkForm( bytes );
      bytes_ += bytes;
      expected_.reset();
   }

   void addLine() {
      if ( expected_ ) {
         expected_->push_back( { false, line_ } );
      }
      line_.clear();
   }
   // In front of an event, and at the end.
   void endLine() {
      if ( !line_.empty() ) {
         addLine();
      }
   }

   std::string bytes_;
   std::optional< Arrivals > expected_{ Arrivals() };
   std::string line_;  // that is not over
};

std::size_t sizeOf( Arrivals const & all ) {
   std::size_t size = 0;
   for ( Arrival const & one : all ) {
      mustHold( one.isEvent || one.bytes.find( '\n' ) == std::string::npos, "a line is one line" );
      mustHold( one.isEvent || one.bytes.size() <= kLongestLine, "a line has its limit" );
      size += one.bytes.size() + ( one.isEvent ? kFrame : 0 );
   }
   return size;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   Pieces pieces( data, size );
   std::size_t const atOnce = std::size_t{ pieces.byte() } + 1;
   Stream const stream( pieces );
   Arrivals const whole = received( stream.bytes(), 65536 );
   mustHold( received( stream.bytes(), atOnce ) == whole, "it does not matter how bytes are cut" );
   mustHold( sizeOf( whole ) <= stream.bytes().size(), "nothing arrives that was not sent" );
   mustHold( !stream.expected() || *stream.expected() == whole,
             "events and lines arrive as they were sent" );
   return 0;
}
