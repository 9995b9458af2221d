// The packet pipeline: frames a second through tunnel termination, ingress lookup, replication to
// eight ports and egress check, and whole captures beside a bare copy of the same file.
#include <benchmark/benchmark.h>

#include <filesystem>

#include <Capture/CaptureReader.h>
#include <Capture/PortCaptures.h>
#include <Frames/FrameFields.h>
#include <Frames/Headers.h>
#include <Pipeline/Pipeline.h>
#include <pcap/pcap.h>
#include <support/ProgrammedChip.h>
#include <tins/ethernetII.h>
#include <tins/ip.h>
#include <tins/rawpdu.h>
#include <tins/udp.h>

namespace {

using Pelk::IntfId;
using Pelk::IpGenAddr;

constexpr U32 kRules = 256;
constexpr U16 kPorts = 8;
VornalTypes::VornalPort const kUnderlay{ 0, 49 };

IpGenAddr vtep( U32 n ) {
   return IpGenAddr::ipv4( { 10, 0, static_cast< U8 >( n >> 8 ), static_cast< U8 >( n ) } );
}

// Counts what is sent, and looks at it no further.
class Sink final : public Chip::Transmitter {
 public:
   void transmit( VornalTypes::VornalPort /*port*/, std::span< U8 const > frame ) override {
      benchmark::DoNotOptimize( frame.data() );
      ++count;
   }

   U64 count = 0;
};

// One unit: an underlay port and eight access ports, VTEPs 10.0.0.2 and up, all 256 entries of both
// groups used. Each VTEP's frames are marked with a class id; port 1 drops them.
class Switch : public Bench::ProgrammedChip {
 public:
   Switch() : ProgrammedChip( kRules ) {
      Chip::ForwardingConfig config;
      config.vtepIpv4 = vtep( 1 );
      config.vtepIpv6 = IpGenAddr::fromString( "2001:db8::1" );
      config.vlanToVni = { { 10, 10100 } };
      config.interfaces.push_back(
         { .intfId = IntfId::fromString( "Ethernet49" ), .logicalPort = 49, .isUnderlay = true } );
      for ( U16 port = 1; port <= kPorts; ++port ) {
         config.interfaces.push_back(
            { .intfId = IntfId::fromString( "Ethernet" + std::to_string( port ) ),
              .logicalPort = port,
              .vlans = { {}, 10 } } );
      }
      addExemptions();
      for ( U16 n = 2; n < kRules; ++n ) {
         config.tunnels[ vtep( n ) ] = { .vpIndex = n };
         addClassOfVtep( n );
      }
      U16 const sixth = 1000;
      for ( U16 n = 2; n <= 4; ++n ) {
         std::string const address = "2001:db8::" + std::to_string( n );
         config.tunnels[ IpGenAddr::fromString( address ) ] = { .vpIndex = static_cast< U16 >(
                                                                   sixth + n ) };
      }
      for ( U16 n = 2; n < kRules + 2; ++n ) {
         addDrop( n, 1 );
      }
      pipeline.forwardingIs( config );
   }

   Chip::Pipeline pipeline{ board.units() };
};

Chip::FrameFields broadcastFrom( U32 n ) {
   return { .outer = Chip::OuterFields{ .sourceVtep = vtep( n ),
                                        .destinationVtep = vtep( 1 ),
                                        .vni = 10100 },
            .source = Chip::MacAddress( 0x00005e005300 + n ),
            .content = Chip::FrameContent::Udp,
            .sourceIp = IpGenAddr::fromString( "192.0.2.2" ),
            .destinationIp = IpGenAddr::fromString( "192.0.2.255" ) };
}

// Broadcasts of all VTEPs by turns: seven copies are sent, one is dropped by a rule.
void floodFromTunnels( benchmark::State & state ) {
   Switch leaf1;
   Sink sink;
   std::vector< std::vector< U8 > > frames;
   for ( U32 n = 2; n < kRules; ++n ) {
      frames.push_back( bytesOf( broadcastFrom( n ) ) );
   }
   std::size_t next = 0;
   for ( auto _ : state ) {
      leaf1.pipeline.forward( kUnderlay, frames[ next ], sink );
      next = next + 1 == frames.size() ? 0 : next + 1;
   }
   state.SetItemsProcessed( state.iterations() );
   state.counters[ "copies per frame" ] =
      static_cast< double >( sink.count ) / static_cast< double >( state.iterations() );
}
BENCHMARK( floodFromTunnels );

// All headers of such a frame, read by the pipeline's readers. No lookup, no copy.
void parseByReaders( benchmark::State & state ) {
   std::vector< U8 > const bytes = bytesOf( broadcastFrom( 2 ) );
   for ( auto _ : state ) {
      Chip::Bytes const frame( bytes );
      Chip::EthernetHeader const outer = *Chip::readEthernet( frame );
      Chip::IpHeader outerIp;
      Chip::readIp( outer.etherType, frame.subspan( outer.size() ), outerIp );
      Chip::Bytes const vxlan = outerIp.payloadOf( frame.subspan( outer.size() ) ).subspan( 16 );
      Chip::EthernetHeader const inner = *Chip::readEthernet( vxlan );
      Chip::IpHeader innerIp;
      Chip::readIp( inner.etherType, vxlan.subspan( inner.size() ), innerIp );
      Chip::Bytes const udp = innerIp.payloadOf( vxlan.subspan( inner.size() ) );
      benchmark::DoNotOptimize( Chip::u16At( udp, 2 ) );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( parseByReaders );

// The same by a parsing library, which makes an object of each header: why the pipeline has readers
// of its own.
void parseByLibrary( benchmark::State & state ) {
   std::vector< U8 > const frame = bytesOf( broadcastFrom( 2 ) );
   for ( auto _ : state ) {
      Tins::EthernetII const outer( frame.data(), static_cast< U32 >( frame.size() ) );
      auto const & vxlan = outer.rfind_pdu< Tins::RawPDU >().payload();
      Tins::EthernetII const inner( vxlan.data() + 8, static_cast< U32 >( vxlan.size() - 8 ) );
      benchmark::DoNotOptimize( inner.rfind_pdu< Tins::UDP >().dport() );
   }
   state.SetItemsProcessed( state.iterations() );
}
BENCHMARK( parseByLibrary );

// --- Whole files

std::filesystem::path scratch() {
   std::filesystem::path const folder =
      std::filesystem::temp_directory_path() / "vornal-bench-pipeline";
   std::filesystem::create_directories( folder );
   return folder;
}

// A capture of the repository, a hundred thousand frames long by repetition.
std::filesystem::path enlarged( std::string const & name ) {
   std::filesystem::path const file = scratch() / name;
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

// Reads and writes the file by libpcap and does nothing else.
void copyFile( benchmark::State & state, std::string const & name ) {
   std::filesystem::path const file = enlarged( name );
   std::filesystem::path const copy = scratch() / "copy.pcap";
   U64 frames = 0;
   for ( auto _ : state ) {
      std::array< char, PCAP_ERRBUF_SIZE > reason{};
      pcap_t * const from = pcap_open_offline( file.c_str(), reason.data() );
      pcap_dumper_t * const to = pcap_dump_open( from, copy.c_str() );
      pcap_pkthdr * header = nullptr;
      U8 const * bytes = nullptr;
      for ( ; pcap_next_ex( from, &header, &bytes ) == 1; ++frames ) {
         pcap_dump( reinterpret_cast< U8 * >( to ), header, bytes );
      }
      pcap_dump_close( to );
      pcap_close( from );
   }
   state.SetItemsProcessed( static_cast< S64 >( frames ) );
}

// The file through the pipeline, what leaves into one file for each port.
void forwardFile( benchmark::State & state, std::string const & name ) {
   std::filesystem::path const file = enlarged( name );
   Switch leaf1;
   U64 frames = 0;
   for ( auto _ : state ) {
      Chip::CaptureReader reader( file );
      Chip::PortCaptures captures( scratch() );
      for ( auto frame = reader.next(); frame; frame = reader.next(), ++frames ) {
         captures.timeIs( frame->timestamp );
         leaf1.pipeline.forward( kUnderlay, frame->bytes, captures );
      }
      captures.flush();
   }
   U64 const copies = leaf1.pipeline.counters()[ Chip::Verdict::Sent ];
   state.SetItemsProcessed( static_cast< S64 >( frames ) );
   state.counters[ "copies per frame" ] =
      static_cast< double >( copies ) / static_cast< double >( frames );
}

BENCHMARK_CAPTURE( copyFile, v4, std::string( "fabric-v4.pcap" ) )->Unit( benchmark::kMillisecond );
BENCHMARK_CAPTURE( forwardFile, v4, std::string( "fabric-v4.pcap" ) )
   ->Unit( benchmark::kMillisecond );
BENCHMARK_CAPTURE( copyFile, v6, std::string( "fabric-v6.pcap" ) )->Unit( benchmark::kMillisecond );
BENCHMARK_CAPTURE( forwardFile, v6, std::string( "fabric-v6.pcap" ) )
   ->Unit( benchmark::kMillisecond );

}  // namespace
