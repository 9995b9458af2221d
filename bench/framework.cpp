// What the entity framework costs, each beside the bare thing it stands for, in one run:
//
// - a set with one subscriber, beside an assignment and a call of the same function object;
// - inserting, looking up, walking and deleting at 10, 1,000 and 100,000 members, beside std::map;
// - a disabled trace;
// - a guarded field call, beside the virtual call that it guards.
//
// Collections also give the time per member. To hold: look-up and walk within 1.3 times std::map, a
// disabled trace under 2 ns, a guarded call under 60 ns above the bare one. On a machine that has
// other work to do, compare several runs:
//
//    bench-framework --benchmark_repetitions=5 --benchmark_enable_random_interleaving=true
#include <benchmark/benchmark.h>

#include <algorithm>
#include <ctime>
#include <functional>
#include <map>
#include <memory>
#include <numeric>
#include <random>
#include <vector>

#include <Kiv/Rows.h>
#include <Shim/FieldCall.h>
#include <Shim/OneCallSdk.h>

namespace Bench {

class Table : public Kiv::NamedEntity {
   KIV_ENTITY( Table, Kiv::NamedEntity )
   KIV_VALUE( mtu, U32 )
   KIV_COLLECTION( entryId, U32, U32 )

   Table() : NamedEntity( "table" ) {}
};

}  // namespace Bench

KIV_DEFINE( Bench::Table )

namespace Bench {
namespace {

using benchmark::DoNotOptimize;
using benchmark::State;

// --- Set with one subscriber

void setWithOneSubscriber( State & state ) {
   auto const table = Quelm::make< Table >();
   U64 sum = 0;
   Kiv::Watch< Table > watch( table, [ &sum ]( Kiv::Change const & change ) {
      sum += *change.newValue< U32 >();
   } );
   watch.hasNotificationActiveIs( true );
   U32 mtu = 0;
   for ( auto _ : state ) {
      table->mtuIs( ++mtu );
   }
   DoNotOptimize( sum );
}

void assignAndCall( State & state ) {
   U64 sum = 0;
   std::function< void( U32 const & ) > handler = [ &sum ]( U32 const & value ) { sum += value; };
   DoNotOptimize( handler );
   U32 mtu = 0;
   for ( auto _ : state ) {
      benchmark::ClobberMemory();
      handler( ++mtu );
   }
   DoNotOptimize( sum );
}

// --- Collections
//
// Each operation is a function of its own, as a handler that makes one is. Inlined into a loop that
// does nothing else, g++ turns the search of one of the two containers into conditional moves and
// not that of the other, and the comparison is one of code generation.

class Entity {
 public:
   [[gnu::noinline]] void insert( U32 key ) { table_->entryIdIs( key, key ); }
   [[gnu::noinline]] U32 lookUp( U32 key ) const { return table_->entryId( key ); }
   [[gnu::noinline]] void remove( U32 key ) { table_->entryIdDel( key ); }
   [[gnu::noinline]] U64 walk() const {
      U64 sum = 0;
      for ( auto iter = table_->entryIdIter(); iter; ++iter ) {
         sum += iter.key() + iter.value();
      }
      return sum;
   }

 private:
   Quelm::Ptr< Table > table_ = Quelm::make< Table >();
};

// On the heap, as a member of an entity is.
class StdMap {
 public:
   [[gnu::noinline]] void insert( U32 key ) { map_->insert_or_assign( key, key ); }
   [[gnu::noinline]] U32 lookUp( U32 key ) const {
      auto const found = map_->find( key );
      return found == map_->end() ? 0 : found->second;
   }
   [[gnu::noinline]] void remove( U32 key ) { map_->erase( key ); }
   [[gnu::noinline]] U64 walk() const {
      U64 sum = 0;
      for ( auto const & [ key, value ] : *map_ ) {
         sum += key + value;
      }
      return sum;
   }

 private:
   std::unique_ptr< std::map< U32, U32 > > map_ = std::make_unique< std::map< U32, U32 > >();
};

// Some containers of the size asked for, so many that a pass over them all can be timed, and the
// keys in an order without pattern.
template< typename Container > class Filled {
 public:
   explicit Filled( State const & state )
         : keys_( static_cast< std::size_t >( state.range( 0 ) ) ),
           containers_( std::max< std::size_t >( 1, 1000 / keys_.size() ) ) {
      std::iota( keys_.begin(), keys_.end(), 1U );
      std::shuffle( keys_.begin(), keys_.end(), std::mt19937( 1 ) );
   }
   template< typename Act > void forEach( Act const & act ) {
      for ( Container & container : containers_ ) {
         for ( U32 const key : keys_ ) {
            act( container, key );
         }
      }
   }
   void insertAll() {
      forEach( []( Container & container, U32 key ) { container.insert( key ); } );
   }
   void removeAll() {
      forEach( []( Container & container, U32 key ) { container.remove( key ); } );
   }
   std::vector< Container > const & containers() const { return containers_; }
   std::size_t members() const { return keys_.size() * containers_.size(); }

 private:
   std::vector< U32 > keys_;
   std::vector< Container > containers_;
};

// The processor time that this thread has had: what other programs take does not count.
double threadSeconds() {
   timespec time{};
   clock_gettime( CLOCK_THREAD_CPUTIME_ID, &time );
   return static_cast< double >( time.tv_sec ) + 1e-9 * static_cast< double >( time.tv_nsec );
}

// Times `act`, which goes once through all members; what it leaves to be undone is not counted.
template< typename Container, typename Act, typename Undo >
void timed( State & state, Filled< Container > & filled, Act const & act, Undo const & undo ) {
   for ( auto _ : state ) {
      double const begin = threadSeconds();
      act();
      state.SetIterationTime( threadSeconds() - begin );
      undo();
   }
   using benchmark::Counter;
   state.counters[ "member" ] = Counter( static_cast< double >( filled.members() ),
                                         Counter::kIsIterationInvariantRate | Counter::kInvert );
}

template< typename Container > void insert( State & state ) {
   Filled< Container > filled( state );
   timed(
      state, filled, [ & ] { filled.insertAll(); }, [ & ] { filled.removeAll(); } );
}

template< typename Container > void remove( State & state ) {
   Filled< Container > filled( state );
   filled.insertAll();
   timed(
      state, filled, [ & ] { filled.removeAll(); }, [ & ] { filled.insertAll(); } );
}

template< typename Container > void lookUp( State & state ) {
   Filled< Container > filled( state );
   filled.insertAll();
   auto const lookUpAll = [ & ] {
      filled.forEach(
         []( Container const & container, U32 key ) { DoNotOptimize( container.lookUp( key ) ); } );
   };
   timed( state, filled, lookUpAll, [] {} );
}

template< typename Container > void walk( State & state ) {
   Filled< Container > filled( state );
   filled.insertAll();
   auto const walkAll = [ & ] {
      for ( Container const & container : filled.containers() ) {
         DoNotOptimize( container.walk() );
      }
   };
   timed( state, filled, walkAll, [] {} );
}

// --- Trace

Trace::Handle const trace( "Bench" );

void disabledTrace( State & state ) {
   U32 unit = 0;
   for ( auto _ : state ) {
      TRACE( trace, 8,
             "ifpTcamEntries"
                << ", unit: " << unit );
      DoNotOptimize( ++unit );
   }
}

// --- Field call

// A shim whose every call succeeds at once.
class QuickSdk final : public Shim::OneCallSdk {
 public:
   // clang-format off
   S32 make( Shim::Call & ) override { return 0; }
   void beforeFieldCall() override {}
   void fieldCallFailed() override {}
   S32 successCode() const override { return 0; }
   std::string errorText( S32 ) const override { return {}; }
   U32 packetResL3McKnown() const override { return 0; }
   U32 vxlanGport( U16 vpIndex ) const override { return vpIndex; }
   void pbmpClear( _shr_pbmp & ) const override {}
   bool pbmpEqual( _shr_pbmp const &, _shr_pbmp const & ) const override { return true; }
   U32 pbmpCount( _shr_pbmp const & ) const override { return 0; }
   // clang-format on
};

void guardedFieldCall( State & state ) {
   Kiv::ActivityManager manager;
   Kiv::ActivityLockAnchor const locked( manager );
   QuickSdk sdk;
   Shim::sdk_ = &sdk;
   U32 const unit = 0;
   U32 entryId = 0;
   for ( auto _ : state ) {
      DoNotOptimize( Shim::sdk_ );
      SDK_FIELD_CALL( bcm_field_qualify_SrcVxlanGport( unit, ++entryId, 7 ) );
   }
}

void bareFieldCall( State & state ) {
   QuickSdk sdk;
   Shim::sdk_ = &sdk;
   U32 const unit = 0;
   U32 entryId = 0;
   for ( auto _ : state ) {
      DoNotOptimize( Shim::sdk_ );
      DoNotOptimize( Shim::sdk_->bcm_field_qualify_SrcVxlanGport( unit, ++entryId, 7 ) );
   }
}

void sizes( benchmark::internal::Benchmark * benchmark ) {
   benchmark->Arg( 10 )->Arg( 1000 )->Arg( 100000 )->UseManualTime();
}

BENCHMARK( setWithOneSubscriber );
BENCHMARK( assignAndCall );
BENCHMARK( insert< Entity > )->Apply( sizes );
BENCHMARK( insert< StdMap > )->Apply( sizes );
BENCHMARK( lookUp< Entity > )->Apply( sizes );
BENCHMARK( lookUp< StdMap > )->Apply( sizes );
BENCHMARK( walk< Entity > )->Apply( sizes );
BENCHMARK( walk< StdMap > )->Apply( sizes );
BENCHMARK( remove< Entity > )->Apply( sizes );
BENCHMARK( remove< StdMap > )->Apply( sizes );
BENCHMARK( disabledTrace );
BENCHMARK( guardedFieldCall );
BENCHMARK( bareFieldCall );

}  // namespace
}  // namespace Bench
