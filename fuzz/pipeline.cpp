// Any bytes at any port are forwarded or dropped, under any rules: nothing is read past their end,
// each frame is counted once, and what leaves is a frame by a port of the switch. The rules that
// decide are those that a search through all of them finds. For libFuzzer; fuzz/README.md has the
// command.
//
// The input: the port of arrival, the number of rules, the rules, the frame. An answer comes in at
// another port.
#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <Board/Board.h>
#include <Explanation/Explanation.h>
#include <Pieces.h>
#include <Pipeline/Pipeline.h>
#include <Property.h>

namespace {

using Fuzz::mustHold;
using Fuzz::Pieces;
using Pelk::IntfId;
using Pelk::IpGenAddr;

constexpr std::uint16_t kPorts = 4;
constexpr unsigned kMostRules = 12;

Chip::ForwardingConfig forwarding() {
   Chip::ForwardingConfig config;
   config.vtepIpv4 = IpGenAddr::fromString( "10.0.0.1" );
   config.vtepIpv6 = IpGenAddr::fromString( "2001:db8::1" );
   config.routerMac = Chip::MacAddress( 0x00005e005301 );  // what the captures' hosts send to
   for ( std::uint16_t port = 1; port <= kPorts; ++port ) {
      config.interfaces.push_back(
         { .intfId = IntfId::fromString( "Ethernet" + std::to_string( port ) ),
           .logicalPort = port } );
   }
   config.interfaces[ 0 ].isUnderlay = true;
   config.interfaces[ 1 ].vlans = { {}, 10 };
   config.interfaces[ 2 ].vlans = { { 10 }, 20 };
   config.portChannels = { { .intfId = IntfId::fromString( "Port-Channel1" ),
                             .members = { config.interfaces[ 3 ].intfId },
                             .vlans = { { 10, 20 }, {} } } };
   config.vlanToVni = { { 10, 10100 } };
   for ( std::uint16_t n = 2; n <= 4; ++n ) {
      for ( std::string const network : { "10.0.0.", "2001:db8::" } ) {
         IpGenAddr const vtep = IpGenAddr::fromString( network + std::to_string( n ) );
         config.tunnels[ vtep ] = { .vpIndex = n };
         config.floodLists[ 10100 ].push_back( vtep );
      }
   }
   config.hostRoutes = { { IpGenAddr::fromString( "192.0.2.1" ),
                           { 20, Chip::MacAddress( 0x00005e005302 ) } } };
   config.multicastRoutes = { { IpGenAddr::fromString( "239.1.1.1" ), {} } };
   return config;
}

// --- Rules

// Values that frames of this switch have, and any others.
U32 valueFor( Pieces & pieces, Chip::Qualifier qualifier ) {
   std::array< U32, 8 > const small{ 0, 1, 2, 3, 4, 5, 12, 10100 };
   U32 const value = pieces.oneOf( small );
   return qualifier == Chip::Qualifier::SrcVxlanGport
             ? Chip::vxlanGportOf( static_cast< U16 >( value ) )
             : value + ( pieces.byte() == 0xff ? 0x10000U : 0U );
}

U32 mask( Pieces & pieces ) {
   std::array< U32, 6 > const masks{ 0xffffffff, 0xff, 1, 0, 0xfffffffe, 0xffff };
   return pieces.oneOf( masks );
}

Chip::ActionParameters parametersFor( Pieces & pieces, Chip::Action action ) {
   Chip::ActionParameters parameters;
   if ( action == Chip::Action::EgressMask ) {
      unsigned const ports = pieces.byte();
      for ( U32 port = 0; port < 8; ++port ) {
         if ( ( ports >> port & 1U ) != 0 ) {
            parameters.ports.bitSet( port );
         }
      }
   } else if ( action == Chip::Action::EgressClassSelect ) {
      parameters.param0 = BCM_FIELD_EGRESS_CLASS_SELECT_NEW;
   } else if ( action == Chip::Action::NewClassId ) {
      parameters.param0 = pieces.below( 4 );
   }
   return parameters;
}

void stage( Pieces & pieces, Chip::GroupKind kind, Chip::Entry & entry ) {
   unsigned const parts = pieces.byte();
   unsigned n = 0;
   for ( Chip::Qualifier const qualifier : Chip::kQualifiers ) {
      if ( Chip::kindOf( qualifier ) == kind && ( parts >> n++ & 1U ) != 0 ) {
         U32 const value = valueFor( pieces, qualifier );
         entry.qualify( qualifier, { value, mask( pieces ), pieces.below( 2 ), mask( pieces ) } );
      }
   }
   for ( Chip::Action const action : Chip::kActions ) {
      if ( Chip::kindOf( action ) == kind && ( parts >> n++ & 1U ) != 0 ) {
         entry.actionAdd( action, parametersFor( pieces, action ) );
      }
   }
   if ( unsigned const priority = pieces.below( 4 ); priority != 0 ) {
      entry.priorityIs( priority );
   }
}

// A rule is installed, staged only, written again, or released again.
void addRule( Pieces & pieces, Chip::Unit & unit ) {
   bool const isIngress = pieces.yesOrNo();
   Chip::Group & group =
      *unit.group( isIngress ? Vornal::kIfpLocalBiasGroup : Vornal::kEfpLocalBiasGroup );
   U32 const id = group.entryNew( "rule" );
   stage( pieces, group.kind(), *group.entry( id ) );
   unsigned const fate = pieces.below( 8 );
   if ( fate != 0 ) {
      group.install( id );
   }
   if ( fate == 1 ) {
      stage( pieces, group.kind(), *group.entry( id ) );
      group.reinstall( id );
   } else if ( fate == 2 ) {
      group.release( id );
   }
}

void addRules( Pieces & pieces, Chip::Unit & unit ) {
   for ( unsigned n = pieces.below( kMostRules + 1 ); n > 0; --n ) {
      addRule( pieces, unit );
   }
}

// --- The frame

// Reads all that is transmitted.
class Reader final : public Chip::Transmitter {
 public:
   void transmit( VornalTypes::VornalPort port, std::span< std::uint8_t const > frame ) override {
      mustHold( port.unit() == 0 && port.logicalPort() >= 1 && port.logicalPort() <= kPorts,
                "a frame leaves by a port of the switch" );
      mustHold( frame.size() >= 14, "what leaves is a frame" );
      for ( std::uint8_t const byte : frame ) {
         sum_ = sum_ + byte;
      }
      ++frames_;
   }
   std::size_t frames() const { return frames_; }

 private:
   unsigned volatile sum_ = 0;
   std::size_t frames_ = 0;
};

std::size_t countOf( Chip::FrameStory const & story, Chip::Verdict verdict ) {
   return static_cast< std::size_t >(
      std::count_if( story.copies.begin(), story.copies.end(),
                     [ = ]( Chip::Copy const & copy ) { return copy.verdict == verdict; } ) );
}

// What has been counted since then.
Chip::PipelineCounters since( Chip::PipelineCounters const & before,
                              Chip::PipelineCounters const & now ) {
   Chip::PipelineCounters counted;
   counted.frames = now.frames - before.frames;
   auto const minus = std::minus< std::uint64_t >();
   std::transform( now.forwarded.begin(), now.forwarded.end(), before.forwarded.begin(),
                   counted.forwarded.begin(), minus );
   std::transform( now.dropped.begin(), now.dropped.end(), before.dropped.begin(),
                   counted.dropped.begin(), minus );
   std::transform( now.copies.begin(), now.copies.end(), before.copies.begin(),
                   counted.copies.begin(), minus );
   return counted;
}

template< typename Counts > std::uint64_t sumOf( Counts const & counts ) {
   std::uint64_t sum = 0;
   for ( std::uint64_t const count : counts ) {
      sum += count;
   }
   return sum;
}

void checkCounts( Chip::PipelineCounters const & counters, Chip::FrameStory const & story ) {
   mustHold( counters.frames == 1, "a frame is counted" );
   mustHold( sumOf( counters.forwarded ) + sumOf( counters.dropped ) == 1,
             "a frame is forwarded or dropped" );
   mustHold( story.dropReason ? counters[ *story.dropReason ] == 1 && story.copies.empty()
                              : story.kind && counters[ *story.kind ] == 1,
             "it is counted by its kind, or by the reason" );
   mustHold( sumOf( counters.copies ) == story.copies.size(), "each copy is counted" );
   for ( Chip::Copy const & copy : story.copies ) {
      mustHold( counters[ copy.verdict ] == countOf( story, copy.verdict ),
                "a copy is counted by its verdict" );
   }
}

// --- The rules that decide

// The explanation compares the frame with each rule, and has nothing in common with the lookup.
std::optional< Chip::RuleKey > winnerOf( Chip::GroupComparison const & comparison ) {
   return comparison.winner() ? std::optional( comparison.winner()->rule ) : std::nullopt;
}

bool hasDrop( Chip::Units & units, Chip::RuleKey const & rule ) {
   Chip::Entry const & entry = *units.group( rule.unit, rule.group )->entry( rule.id );
   return ( *entry.written() )[ Chip::Action::Drop ].has_value();
}

void checkCopy( Chip::Units & units, Chip::CopyExplanation const & why ) {
   bool const isMasked = why.mask && why.mask->hasPort;
   mustHold( ( why.story.verdict == Chip::Verdict::Masked ) == isMasked,
             "a copy is masked by the mask of the winner" );
   if ( why.egress && !isMasked ) {
      auto const winner = winnerOf( why.egress->comparison );
      bool const isDropped = winner && hasDrop( units, *winner );
      mustHold( ( why.story.verdict == Chip::Verdict::Dropped ) == isDropped,
                "a copy is dropped by the winner of its egress rules" );
      mustHold( !isDropped || why.story.rule == winner, "a copy has the rule that decided" );
   }
}

void checkRules( Chip::Units & units, Chip::Explanation const & why ) {
   for ( Chip::IngressExplanation const & ingress : why.ingress ) {
      mustHold( winnerOf( ingress.comparison ) == ingress.story.rule,
                "the lookup finds the rule that a comparison with all finds" );
   }
   for ( Chip::CopyExplanation const & copy : why.copies ) {
      checkCopy( units, copy );
   }
}

void forward( Chip::Board & board, Chip::Pipeline & pipeline, std::uint16_t port,
              std::vector< std::uint8_t > const & frame ) {
   Chip::PipelineCounters const before = pipeline.counters();
   std::size_t const learned = pipeline.learned();
   Chip::Explanation const why = Chip::explain( pipeline, { 0, port }, frame );
   mustHold( pipeline.counters().frames == before.frames && pipeline.learned() == learned,
             "a question changes nothing" );
   Reader reader;
   Chip::FrameStory const & story = pipeline.forward( { 0, port }, frame, reader );
   mustHold( why.story == story, "what is foretold comes true" );
   mustHold( reader.frames() == countOf( story, Chip::Verdict::Sent ), "what is sent leaves" );
   checkCounts( since( before, pipeline.counters() ), story );
   checkRules( board.units(), why );
}

// Its addresses are the other way round.
std::vector< std::uint8_t > answerTo( std::vector< std::uint8_t > frame ) {
   constexpr std::ptrdiff_t kAddress = Chip::MacAddress::kBytes;
   if ( frame.size() >= 2 * kAddress ) {
      std::swap_ranges( frame.begin(), frame.begin() + kAddress, frame.begin() + kAddress );
   }
   return frame;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput( std::uint8_t const * data, std::size_t size ) {
   static Chip::ForwardingConfig const config = forwarding();
   Pieces pieces( data, size );
   auto const port = static_cast< std::uint16_t >( pieces.below( kPorts + 1 ) );
   Chip::Board board( { { { .number = 0, .modId = 0 } } } );
   Chip::Pipeline pipeline( board.units() );
   pipeline.forwardingIs( config );
   addRules( pieces, *board.units().unit( 0 ) );
   auto const rest = pieces.bytes( size );
   std::vector< std::uint8_t > const frame( rest.begin(), rest.end() );
   forward( board, pipeline, port, frame );
   // The addresses of the first are known by then.
   forward( board, pipeline, static_cast< std::uint16_t >( port % kPorts + 1 ), answerTo( frame ) );
   return 0;
}
