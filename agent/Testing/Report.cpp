#include <Testing/Report.h>

#include <algorithm>

#include <fmt/format.h>

#include <Story/Wording.h>

namespace Testing {

bool Report::hasMore( std::vector< Result > const & results ) const {
   return isVerbose_ && told_ < results.size() && results[ told_ ].isOver;
}

void Report::tellOver( std::vector< Result > const & results ) {
   while ( hasMore( results ) ) {
      Result const & one = results[ told_++ ];
      out_ << ( one.isFailed() ? style_.bad( "FAILED" ) : style_.good( "passed" ) )
           << fmt::format( "  {:6.2f} s  {}\n", one.seconds, Text::printable( one.file ) );
   }
   out_ << std::flush;
}

void Report::tellEnd( Tested const & tested, double seconds ) {
   tellOver( tested.results );
   for ( Result const & one : tested.results ) {
      if ( one.isOver && one.isFailed() ) {
         out_ << '\n' << style_.bad( "FAILED" ) << ' ' << style_.bold( one.file ) << '\n';
         std::for_each( one.failures.begin(), one.failures.end(),
                        [ this ]( Failure const & failure ) { tell( failure ); } );
      }
   }
   if ( isVerbose_ ) {
      tellSlowest( tested.results );
   }
   tellTotals( tested, seconds );
   out_ << std::flush;
}

void Report::tell( Failure const & failure ) {
   out_ << "   " << Text::printable( failure.place ) << ( failure.place.empty() ? "" : ": " )
        << Text::printable( failure.what ) << '\n';
   for ( std::string const & line : failure.lines ) {
      out_ << "      " << Text::printable( line ) << '\n';
   }
}

void Report::tellSlowest( std::vector< Result > results ) {
   constexpr std::size_t kMost = 3;
   std::stable_sort( results.begin(), results.end(),
                     []( Result const & a, Result const & b ) { return a.seconds > b.seconds; } );
   results.resize( std::min( results.size(), kMost ) );
   out_ << "\nslowest:\n";
   for ( Result const & one : results ) {
      out_ << fmt::format( "   {:6.2f} s  {}\n", one.seconds, Text::printable( one.file ) );
   }
}

void Report::tellTotals( Tested const & tested, double seconds ) {
   auto const & results = tested.results;
   std::size_t const failed = failedIn( results );
   auto const over = static_cast< std::size_t >(
      std::count_if( results.begin(), results.end(),
                     []( Result const & one ) { return one.isOver; } ) );
   std::size_t expectations = 0;
   for ( Result const & one : results ) {
      expectations += one.expectations;
   }
   std::string const scenarios = Story::counted( results.size(), "scenario" );
   std::string const rest =
      fmt::format( "; {}; {:.1f} s\n", Story::counted( expectations, "expectation" ), seconds );
   bool const isQuiet = !isVerbose_ && failed == 0;
   out_ << ( isQuiet ? "" : "\n" );
   if ( tested.signal != 0 ) {
      out_ << style_.bad(
         fmt::format( "INTERRUPTED: {} of {} tested, {} failed", over, scenarios, failed ) );
   } else if ( failed != 0 ) {
      out_ << style_.bad( fmt::format( "FAILED: {} of {}", failed, scenarios ) );
   } else {
      out_ << style_.good( "PASSED: " + scenarios );
   }
   out_ << rest;
}

}  // namespace Testing
