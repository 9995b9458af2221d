// Tells people a test run: a line for each scenario where they want it, then the failures, and the
// totals last.
#pragma once

#include <ostream>

#include <Story/Style.h>
#include <Testing/Workers.h>

namespace Testing {

class Report {
 public:
   // The stream must outlive it.
   Report( std::ostream & out, Story::Style style, bool isVerbose )
         : out_( out ), style_( style ), isVerbose_( isVerbose ) {}

   // A line for each scenario that is over, as soon as all before it are.
   void tellOver( std::vector< Result > const & results );
   // Whether tellOver() would print one.
   bool hasMore( std::vector< Result > const & results ) const;
   // `seconds` is the time of the whole test run.
   void tellEnd( Tested const & tested, double seconds );

 private:
   void tell( Failure const & failure );
   void tellSlowest( std::vector< Result > results );
   void tellTotals( Tested const & tested, double seconds );

   std::ostream & out_;
   Story::Style style_;
   bool isVerbose_;
   std::size_t told_ = 0;  // the number of scenarios that have their line
};

}  // namespace Testing
