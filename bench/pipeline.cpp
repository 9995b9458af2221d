// The packet pipeline: frames a second through tunnel termination, ingress lookup, replication to
// eight ports and egress check; and its header readers beside a parsing library.
#include <benchmark/benchmark.h>

#include <Frames/Headers.h>
#include <support/ForwardingLeaf.h>
#include <tins/ethernetII.h>
#include <tins/ip.h>
#include <tins/rawpdu.h>
#include <tins/udp.h>

namespace Bench {
namespace {

// Counts what is sent, and looks at it no further.
class Sink final : public Chip::Transmitter {
 public:
   void transmit( VornalTypes::VornalPort /*port*/, std::span< U8 const > frame ) override {
      benchmark::DoNotOptimize( frame.data() );
      ++count;
   }

   U64 count = 0;
};

// Broadcasts of all VTEPs by turns: seven copies are sent, one is dropped by a rule.
void floodFromTunnels( benchmark::State & state ) {
   ForwardingLeaf leaf1;
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

}  // namespace
}  // namespace Bench
