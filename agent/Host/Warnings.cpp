#include <Host/Warnings.h>

#include <algorithm>

#include <Expectations/TraceLineExpected.h>
#include <Steps/Expect.h>
#include <Text/Words.h>
#include <Trace/Trace.h>

namespace Host {

namespace {

std::vector< std::string_view > viewsOf( std::vector< std::string > const & texts ) {
   return { texts.begin(), texts.end() };
}

std::string hint( std::string_view name, std::vector< std::string > const & known ) {
   std::string_view const near = Text::nearest( name, viewsOf( known ) );
   return near.empty() ? "" : "; did you mean '" + std::string( near ) + "'?";
}

// Compares names with the trace handles of all loaded modules.
class Handles {
 public:
   // Notes a pattern or a name that matches no handle.
   void check( std::string const & place, std::string_view pattern ) {
      if ( isAnyMatched( pattern ) ) {
         return;
      }
      std::string const what = pattern.ends_with( '*' )
                                  ? " matches no trace handle of a loaded module"
                                  : " is no trace handle of a loaded module";
      unknown_.push_back( place + ": '" + std::string( pattern ) + '\'' + what +
                          hint( pattern, names_ ) );
   }

   std::vector< std::string > const & unknown() const { return unknown_; }

 private:
   bool isAnyMatched( std::string_view pattern ) const {
      bool const isBeginning = pattern.ends_with( '*' );
      std::string_view const text = pattern.substr( 0, pattern.size() - ( isBeginning ? 1 : 0 ) );
      return std::any_of( names_.begin(), names_.end(), [ & ]( std::string_view name ) {
         return isBeginning ? name.starts_with( text ) : name == text;
      } );
   }

   std::vector< std::string > const names_ = Trace::handleNames();
   std::vector< std::string > unknown_;
};

void checkExpected( Handles & handles, std::string const & file, Steps::Expect const & expect ) {
   for ( Expectations::Expectation const & expectation : expect.expectations ) {
      if ( auto const * const line = expectation.as< Expectations::TraceLineExpected >() ) {
         handles.check( file + ':' + std::to_string( expectation.line ), line->handle );
      }
   }
}

}  // namespace

std::vector< std::string > unknownTraceHandles(
   Scenario::Model const & scenario, std::vector< Scenario::TraceLevels > const & asked ) {
   Handles handles;
   for ( Scenario::TraceLevels const & one : scenario.trace ) {
      handles.check( scenario.file + ':' + std::to_string( one.line ), one.handles );
   }
   for ( Scenario::TraceLevels const & one : asked ) {
      handles.check( "--trace", one.handles );
   }
   for ( Scenario::Step const & step : scenario.steps ) {
      if ( auto const * const expect = step.as< Steps::Expect >() ) {
         checkExpected( handles, scenario.file, *expect );
      }
   }
   return handles.unknown();
}

std::vector< std::string > togglesNotAskedFor( FeatureFiles::Reader const & reader ) {
   std::vector< std::string > texts;
   for ( FeatureFiles::Reader::NotAskedFor const & one : reader.notAskedFor() ) {
      texts.push_back( one.file.string() + ": nobody has asked for the toggle '" + one.name + '\'' +
                       hint( one.name, one.asked ) );
   }
   return texts;
}

}  // namespace Host
