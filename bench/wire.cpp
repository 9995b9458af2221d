// Whole captures through the pipeline, what leaves into one file for each port, beside a bare
// program that reads the same file by libpcap and writes as many frames of the same sizes into as
// many files.
//
//    bare, pipeline   ms a capture of 100,000 frames
//    speed            bare / pipeline: at least 0.8 is the aim
#include <benchmark/benchmark.h>

#include <array>
#include <filesystem>
#include <map>
#include <memory>
#include <vector>

#include <Capture/CaptureReader.h>
#include <Capture/PortCaptures.h>
#include <pcap/pcap.h>
#include <support/ForwardingLeaf.h>
#include <support/Rounds.h>

namespace Bench {
namespace {

namespace fs = std::filesystem;

fs::path scratch() {
   fs::path const folder = fs::temp_directory_path() / "vornal-bench-wire";
   fs::create_directories( folder );
   return folder;
}

// A capture of the repository, a hundred thousand frames long by repetition.
fs::path enlarged( std::string const & name ) {
   fs::path const file = scratch() / name;
   Chip::CaptureWriter writer( file );
   for ( U64 count = 0; count < 100000; ) {
      Chip::CaptureReader reader( VORNAL_SOURCE_DIR "/scenarios/captures/" + name );
      for ( auto frame = reader.next(); frame; frame = reader.next(), ++count ) {
         writer.write( frame->timestamp, frame->bytes );
      }
   }
   writer.flush();
   return file;
}

// What leaves when one frame comes in: by which port, and how long.
struct Copy {
   U16 port;
   U32 size;
};
using Copies = std::vector< Copy >;

class Noting final : public Chip::Transmitter {
 public:
   void transmit( VornalTypes::VornalPort port, std::span< U8 const > frame ) override {
      copies.push_back( { port.logicalPort(), static_cast< U32 >( frame.size() ) } );
   }

   Copies copies;
};

std::vector< Copies > copiesOf( fs::path const & file ) {
   ForwardingLeaf leaf1;
   std::vector< Copies > all;
   Chip::CaptureReader reader( file );
   for ( auto frame = reader.next(); frame; frame = reader.next() ) {
      Noting noting;
      leaf1.pipeline.forward( kUnderlay, frame->bytes, noting );
      all.push_back( std::move( noting.copies ) );
   }
   return all;
}

void byPipeline( fs::path const & file ) {
   ForwardingLeaf leaf1;
   Chip::CaptureReader reader( file );
   Chip::PortCaptures captures( scratch() );
   for ( auto frame = reader.next(); frame; frame = reader.next() ) {
      captures.timeIs( frame->timestamp );
      leaf1.pipeline.forward( kUnderlay, frame->bytes, captures );
   }
   captures.flush();
}

void byLibpcapAlone( fs::path const & file, std::vector< Copies > const & all ) {
   std::array< char, PCAP_ERRBUF_SIZE > reason{};
   pcap_t * const from = pcap_open_offline( file.c_str(), reason.data() );
   std::map< U16, pcap_dumper_t * > to;
   pcap_pkthdr * header = nullptr;
   U8 const * bytes = nullptr;
   std::array< U8, 65536 > frame{};
   for ( Copies const & copies : all ) {
      pcap_next_ex( from, &header, &bytes );
      std::copy_n( bytes, header->caplen, frame.begin() );
      for ( Copy const & copy : copies ) {
         pcap_dumper_t *& dumper = to[ copy.port ];
         if ( !dumper ) {
            dumper =
               pcap_dump_open( from,
                               ( scratch() / ( "bare" + std::to_string( copy.port ) ) ).c_str() );
         }
         pcap_pkthdr const written{ header->ts, copy.size, copy.size };
         pcap_dump( reinterpret_cast< U8 * >( dumper ), &written, frame.data() );
      }
   }
   for ( auto const & [ port, dumper ] : to ) {
      pcap_dump_close( dumper );
   }
   pcap_close( from );
}

void wire( benchmark::State & state, std::string const & name ) {
   fs::path const file = enlarged( name );
   std::vector< Copies > const copies = copiesOf( file );
   Rounds bare;
   Rounds pipeline;
   Rounds speed;
   for ( auto _ : state ) {
      double const alone = timeOf( [ & ] { byLibpcapAlone( file, copies ); } );
      double const whole = timeOf( [ & ] { byPipeline( file ); } );
      bare.add( alone );
      pipeline.add( whole );
      speed.add( alone / whole );
   }
   std::size_t count = 0;
   for ( Copies const & one : copies ) {
      count += one.size();
   }
   bare.report( state, "bare" );
   pipeline.report( state, "pipeline" );
   speed.report( state, "speed" );
   state.counters[ "copies_a_frame" ] =
      static_cast< double >( count ) / static_cast< double >( copies.size() );
   fs::remove_all( scratch() );
}
BENCHMARK_CAPTURE( wire, v4, std::string( "fabric-v4.pcap" ) )
   ->Unit( benchmark::kMillisecond )
   ->Iterations( 15 );
BENCHMARK_CAPTURE( wire, v6, std::string( "fabric-v6.pcap" ) )
   ->Unit( benchmark::kMillisecond )
   ->Iterations( 15 );

}  // namespace
}  // namespace Bench
