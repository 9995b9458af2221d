// Measuring things side by side: what is compared is timed in turns, A B A B, so that whatever else
// the machine does meets both alike; and a figure is the median of its rounds, with their spread.
#pragma once

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <string>
#include <vector>

namespace Bench {

// In ms.
template< typename Work > double timeOf( Work work ) {
   using Clock = std::chrono::steady_clock;
   auto const begin = Clock::now();
   work();
   return std::chrono::duration< double, std::milli >( Clock::now() - begin ).count();
}

// One figure, round by round.
class Rounds {
 public:
   void add( double value ) { values_.push_back( value ); }

   double median() const { return at( values_.size() / 2 ); }

   // Counters of that name: the median, and the first and the third quartile.
   void report( benchmark::State & state, std::string const & name ) const {
      state.counters[ name ] = median();
      state.counters[ name + ".low" ] = at( values_.size() / 4 );
      state.counters[ name + ".high" ] = at( values_.size() * 3 / 4 );
   }

 private:
   // In ascending order.
   double at( std::size_t place ) const {
      std::vector< double > sorted = values_;
      std::sort( sorted.begin(), sorted.end() );
      return sorted.at( place );
   }

   std::vector< double > values_;
};

// A and B of the same rounds, and B / A.
class Pair {
 public:
   void add( double a, double b ) {
      a_.add( a );
      b_.add( b );
      ratio_.add( b / a );
   }
   void report( benchmark::State & state, std::string const & a, std::string const & b ) const {
      state.counters[ a ] = a_.median();
      state.counters[ b ] = b_.median();
      ratio_.report( state, "ratio" );
   }

 private:
   Rounds a_;
   Rounds b_;
   Rounds ratio_;
};

}  // namespace Bench
