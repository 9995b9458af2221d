// The calls that one event causes, beside the fewest that turn the rules before it into the rules
// after it.
//
// A new rule takes a request, a call for each qualifier, each action and a priority, and an
// installation. A rule that goes takes its release. A rule that changes could keep its entry: a
// call for each part that differs, and a reinstallation. A rule is the same one when it has the
// same name; a name says what the rule is for.
//
// `calls` is above `fewest` where the plug-in deletes a rule and adds it again; docs/performance.md
// says which rules it does so for.
#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <tuple>

#include <Snapshot/Rules.h>
#include <support/SharedLeaf.h>
#include <support/ShimInUse.h>

namespace Bench {
namespace {

class Counter final : public Chip::CallObserver {
 public:
   void callMade( Chip::HardwareCall const & ) override { ++calls; }

   U32 calls = 0;
};

// The calls that give an entry the parts of `after`, where it has those of `before`.
template< typename Parts > U32 different( Parts const & before, Parts const & after ) {
   U32 calls = 0;
   for ( std::size_t n = 0; n < after.size(); ++n ) {
      calls += before[ n ] == after[ n ] ? 0U : 1U;
   }
   return calls;
}
U32 partsThatDiffer( Chip::EntryContent const & before, Chip::EntryContent const & after ) {
   return different( before.matches, after.matches ) + different( before.actions, after.actions ) +
          ( before.priority == after.priority ? 0U : 1U );
}

using Purpose = std::tuple< U16, U16, std::string >;  // unit, group, name

std::map< Purpose, Chip::EntryContent > contentsOf( Chip::Rules const & rules ) {
   std::map< Purpose, Chip::EntryContent > contents;
   for ( Chip::Rule const & rule : rules ) {
      contents[ { rule.key.unit, rule.key.group, rule.name } ] = rule.content;
   }
   return contents;
}

U32 fewestCalls( Chip::Rules const & rulesBefore, Chip::Rules const & rulesAfter ) {
   auto before = contentsOf( rulesBefore );
   U32 calls = 0;
   for ( auto const & [ purpose, content ] : contentsOf( rulesAfter ) ) {
      auto const old = before.extract( purpose );
      if ( old.empty() ) {
         calls += 2 + partsThatDiffer( {}, content );
      } else if ( old.mapped() != content ) {
         calls += 1 + partsThatDiffer( old.mapped(), content );
      }
   }
   return calls + static_cast< U32 >( before.size() );
}

struct EventRow {
   char const * name;
   void ( *before )( SharedLeaf & );  // leads to the event
   void ( *event )( SharedLeaf & );
};

constexpr U32 kVteps = 8;
constexpr std::array kEvents{
   EventRow{ "VTEP comes", []( auto & leaf ) { leaf.vtepDel( 0 ); },
             []( auto & leaf ) { leaf.vtepNew( 0 ); } },
   EventRow{ "VTEP goes", []( auto & ) {}, []( auto & leaf ) { leaf.vtepDel( 0 ); } },
   EventRow{ "virtual port changes", []( auto & ) {},
             []( auto & leaf ) { leaf.virtualPortIs( 0, 999 ); } },
   EventRow{ "member leaves", []( auto & ) {}, []( auto & leaf ) { leaf.memberLeaves(); } },
   EventRow{ "member comes", []( auto & leaf ) { leaf.memberLeaves(); },
             []( auto & leaf ) { leaf.memberReturns(); } },
   EventRow{ "port moves", []( auto & ) {}, []( auto & leaf ) { leaf.portMoves(); } },
   EventRow{ "VNI comes", []( auto & ) {}, []( auto & leaf ) { leaf.vniIs( 0, 10000 ); } },
   EventRow{ "VNI changes", []( auto & leaf ) { leaf.vniIs( 0, 10000 ); },
             []( auto & leaf ) { leaf.vniIs( 0, 20000 ); } },
   EventRow{ "VNI goes", []( auto & leaf ) { leaf.vniIs( 0, 10000 ); },
             []( auto & leaf ) { leaf.vniDel( 0 ); } },
};

void calls( benchmark::State & state ) {
   EventRow const & row = kEvents.at( static_cast< std::size_t >( state.range( 1 ) ) );
   Counter counter;
   for ( auto _ : state ) {
      SharedLeaf leaf( { static_cast< Variant >( state.range( 0 ) ), kVteps, 1, 4 }, &counter );
      ShimInUse const shim( leaf.board, &counter );
      leaf.machineNew();
      leaf.bringUp();
      row.before( leaf );
      auto const before = Chip::rulesOf( leaf.board.units() );
      counter.calls = 0;
      row.event( leaf );
      state.counters[ "calls" ] = counter.calls;
      state.counters[ "fewest" ] = fewestCalls( before, Chip::rulesOf( leaf.board.units() ) );
   }
   state.SetLabel( row.name );
}
BENCHMARK( calls )
   ->ArgNames( { "variant", "event" } )
   ->ArgsProduct( { { 0, 1 }, benchmark::CreateDenseRange( 0, kEvents.size() - 1, 1 ) } )
   ->Iterations( 1 );

}  // namespace
}  // namespace Bench
