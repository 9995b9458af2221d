// Events through a pipe, among bytes of others.
#include <Process/EventPipe.h>

#include <algorithm>
#include <random>

#include <gtest/gtest.h>

#include <OneOfEach.h>
#include <Story/Codec.h>

#include <fcntl.h>
#include <unistd.h>

namespace {

class EventPipe : public testing::Test {
 protected:
   static constexpr std::size_t kLongestLine = 10;

   void send( Story::Event const & event ) const {
      EXPECT_TRUE( Process::EventSender( pipe.in ).send( event ) );
   }
   void write( std::string const & bytes ) const { EXPECT_TRUE( pipe.in.write( bytes ) ); }

   // The bytes of an event on the pipe.
   static std::string frameOf( Story::Event const & event ) {
      Process::Pipe const other = Process::pipeNew();
      Process::EventSender( other.in ).send( event );
      std::string frame;
      other.out.readInto( frame );
      return frame;
   }

   // What comes: "event" and its number, or a line. Closes the pipe.
   std::vector< std::string > all() {
      pipe.in.close();
      while ( receiver.pipe().isOpen() ) {
         read();
      }
      return came;
   }
   void read() {
      receiver.read(
         [ this ]( Story::Event const & event ) {
            auto const * const ends = std::get_if< Story::StepEnds >( &event );
            came.push_back( ends ? "event " + std::to_string( ends->number ) : "other event" );
            events.push_back( Story::encoded( event ) );
         },
         [ this ]( std::string const & line ) { came.push_back( line ); } );
   }

   Process::Pipe pipe = Process::pipeNew();
   Process::EventReceiver receiver{ std::move( pipe.out ), kLongestLine };
   std::vector< std::string > came;
   std::vector< std::string > events;
};

using Lines = std::vector< std::string >;

TEST_F( EventPipe, HandsOnEveryKindOfEventUnchanged ) {
   Lines sent;
   for ( Story::Event const & event : OneOfEach::events() ) {
      send( event );
      sent.push_back( Story::encoded( event ) );
   }
   all();
   EXPECT_EQ( events, sent );
}

TEST_F( EventPipe, HandsOnAnEventThatComesByteByByte ) {
   for ( char const c : frameOf( Story::StepEnds{ 7 } ) ) {
      EXPECT_EQ( came, Lines() );
      write( { c } );
      read();
   }
   EXPECT_EQ( came, Lines{ "event 7" } );
}

TEST_F( EventPipe, HandsOnOtherBytesAsLinesBetweenTheEvents ) {
   send( Story::StepEnds{ 1 } );
   write( "noise\n\nmore" );
   send( Story::StepEnds{ 2 } );
   write( "the last" );
   EXPECT_EQ( all(), ( Lines{ "event 1", "noise", "", "more", "event 2", "the last" } ) );
}

TEST_F( EventPipe, HandsOnALongLineInPieces ) {
   write( std::string( 2 * kLongestLine + 1, 'x' ) + '\n' );
   std::string const piece( kLongestLine, 'x' );
   EXPECT_EQ( all(), ( Lines{ piece, piece, "x" } ) );
}

TEST_F( EventPipe, GoesOnAtTheNextEventAfterOneThatIsDamaged ) {
   std::string const frame = frameOf( Story::StepEnds{ 1 } );
   for ( std::size_t n = 0; n < frame.size(); ++n ) {
      std::string damaged = frame;
      damaged[ n ] = static_cast< char >( damaged[ n ] ^ 0x40 );
      write( damaged );
      send( Story::StepEnds{ 2 } );
   }
   all();
   auto const sound = std::count( came.begin(), came.end(), "event 2" );
   EXPECT_EQ( static_cast< std::size_t >( sound ), frame.size() );
   EXPECT_EQ( std::count( came.begin(), came.end(), "event 1" ), 0 );
}

// A write of another process can come between the two halves of a large event.
TEST_F( EventPipe, GoesOnAtTheNextEventAfterOneWithForeignBytesInIt ) {
   std::string frame = frameOf( Story::RuleIs{ OneOfEach::someRule() } );
   write( frame.insert( frame.size() / 2, "noise" ) );
   send( Story::StepEnds{ 2 } );
   all();
   EXPECT_EQ( came.back(), "event 2" );
   EXPECT_EQ( events.size(), 1U );
}

TEST_F( EventPipe, LosesAnEventThatIsNotComplete ) {
   std::string const frame = frameOf( Story::StepEnds{ 1 } );
   write( frame.substr( 0, frame.size() - 1 ) );
   EXPECT_EQ( all(), Lines() );
}

TEST_F( EventPipe, SurvivesAnyBytes ) {
   constexpr unsigned kSeed = 7;
   SCOPED_TRACE( "seed " + std::to_string( kSeed ) );
   std::mt19937 random( kSeed );
   std::string const pieces( "\xff\x16\x02\xff\0\x01\n", 7 );
   for ( int n = 0; n < 100; ++n ) {
      std::string bytes;
      while ( bytes.size() < 300 ) {
         bytes += pieces[ random() % pieces.size() ];
      }
      write( bytes );
      read();
   }
   send( Story::StepEnds{ 2 } );
   all();
   EXPECT_EQ( came.back(), "event 2" );
}

}  // namespace
