// Real captures of a fabric's underlay link, forwarded by leaf1: totals by kind, what hosts get,
// and what becomes of every frame when its end is missing.
#include <Capture/CaptureReader.h>

#include "Leaf.h"

namespace RealFramesTest {

using namespace PipelineTest;

struct Capture {
   std::string file;
   std::size_t outerSize;  // of the outer headers
   // Frames to leaf1 by kind, and those that leaf1 has sent itself
   U64 broadcast;
   U64 unknownUnicast;
   U64 l2Multicast;
   U64 routedMulticast;
   U64 knownUnicast;
   U64 sentByLeaf1;
};

// gtest's text for a parameter.
void PrintTo( Capture const & capture, std::ostream * out ) {
   *out << capture.file;
}

class RealFrames : public testing::TestWithParam< Capture > {
 protected:
   RealFrames() : leaf1( config() ) { leaf1.learn( kHost1, kPort1 ); }

   static Chip::ForwardingConfig config() {
      Chip::ForwardingConfig config = leaf1Config();
      for ( U16 n = 2; n <= 4; ++n ) {
         config.tunnels[ ip( "10.0.0." + std::to_string( n ) ) ] = { .vpIndex = n };
         config.tunnels[ ip( "2001:db8::" + std::to_string( n ) ) ] = {
            .vpIndex = static_cast< U16 >( 10 + n )
         };
      }
      config.multicastRoutes = { { ip( "239.1.1.1" ), {} } };
      return config;
   }

   static Chip::CaptureReader reader() {
      return Chip::CaptureReader( VORNAL_SOURCE_DIR "/scenarios/captures/" + GetParam().file );
   }
   template< typename Visit > static void forEachFrame( Visit visit ) {
      Chip::CaptureReader capture = reader();
      while ( auto const frame = capture.next() ) {
         visit( std::vector< U8 >( frame->bytes.begin(), frame->bytes.end() ) );
      }
   }

   Leaf leaf1;
};

TEST_P( RealFrames, AreOfTheseKinds ) {
   Chip::PipelineCounters const & counters = leaf1.pipeline.counters();
   Chip::PipelineCounters const before = counters;
   forEachFrame( [ & ]( std::vector< U8 > const & bytes ) { leaf1.forward( kUnderlay, bytes ); } );
   Capture const & expected = GetParam();
   EXPECT_EQ( counters[ FrameKind::Broadcast ] - before[ FrameKind::Broadcast ],
              expected.broadcast );
   EXPECT_EQ( counters[ FrameKind::UnknownUnicast ], expected.unknownUnicast );
   EXPECT_EQ( counters[ FrameKind::L2Multicast ], expected.l2Multicast );
   EXPECT_EQ( counters[ FrameKind::RoutedMulticast ], expected.routedMulticast );
   EXPECT_EQ( counters[ FrameKind::KnownUnicast ], expected.knownUnicast );
   EXPECT_EQ( counters[ FrameKind::RoutedUnicast ], 0U );
   EXPECT_EQ( counters[ DropReason::NotForThisVtep ], expected.sentByLeaf1 );
   EXPECT_EQ( counters.frames - before.frames, expected.broadcast + expected.unknownUnicast +
                                                  expected.l2Multicast + expected.routedMulticast +
                                                  expected.knownUnicast + expected.sentByLeaf1 );
}

TEST_P( RealFrames, ReachHost1JustAsTheyWereSent ) {
   forEachFrame( [ & ]( std::vector< U8 > const & bytes ) {
      FrameStory const story = leaf1.forward( kUnderlay, bytes );
      if ( !story.dropReason ) {
         auto const inner = bytes.begin() + static_cast< std::ptrdiff_t >( GetParam().outerSize );
         EXPECT_EQ( leaf1.wire.at( kPort1 ), std::vector< U8 >( inner, bytes.end() ) );
      }
   } );
}

TEST_P( RealFrames, CutAtAnyLengthAreDroppedAndCounted ) {
   forEachFrame( [ & ]( std::vector< U8 > const & bytes ) {
      for ( std::size_t length = 0; length < bytes.size(); ++length ) {
         // A buffer of just this length, so that a sanitizer sees any look beyond it.
         std::vector< U8 > const cut( bytes.begin(),
                                      bytes.begin() + static_cast< std::ptrdiff_t >( length ) );
         U64 const before = leaf1.pipeline.counters().frames;
         FrameStory const story = leaf1.forward( kUnderlay, cut );
         DropReason const expected =
            length < 14 ? DropReason::FrameTooShort : DropReason::OuterTruncated;
         ASSERT_EQ( reasonOf( story ), nameOf( expected ) ) << length << " bytes";
         ASSERT_EQ( leaf1.pipeline.counters().frames, before + 1 );
      }
   } );
}

TEST_P( RealFrames, CutInsideOfTheTunnelAreBridgedAsTheyAre ) {
   forEachFrame( [ & ]( std::vector< U8 > const & bytes ) {
      for ( std::size_t length = 0; length + GetParam().outerSize < bytes.size(); ++length ) {
         auto const inner = bytes.begin() + static_cast< std::ptrdiff_t >( GetParam().outerSize );
         std::vector< U8 > cut( inner, inner + static_cast< std::ptrdiff_t >( length ) );
         std::fill_n( cut.begin(), std::min< std::size_t >( length, 6 ), 0xff );  // to everybody
         FrameStory const story = leaf1.forward( kPort3, cut );
         ASSERT_EQ( story.dropReason.has_value(), length < 14 ) << length << " bytes";
         if ( !story.dropReason ) {
            ASSERT_EQ( leaf1.wire.at( kPort1 ), cut );
         }
      }
   } );
}

INSTANTIATE_TEST_SUITE_P( Captures, RealFrames,
                          testing::Values( Capture{ .file = "fabric-v4.pcap",
                                                    .outerSize = 50,
                                                    .broadcast = 9,
                                                    .unknownUnicast = 3,
                                                    .l2Multicast = 24,
                                                    .routedMulticast = 3,
                                                    .knownUnicast = 25,
                                                    .sentByLeaf1 = 55 },
                                           Capture{ .file = "fabric-v6.pcap",
                                                    .outerSize = 70,
                                                    .broadcast = 9,
                                                    .unknownUnicast = 3,
                                                    .l2Multicast = 25,
                                                    .routedMulticast = 3,
                                                    .knownUnicast = 25,
                                                    .sentByLeaf1 = 49 } ) );

}  // namespace RealFramesTest
