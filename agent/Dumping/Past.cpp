#include <Dumping/Past.h>

#include <algorithm>
#include <array>

namespace Dumping {

namespace {

using Scenario::Yaml;

std::string wordOf( Yaml const & step, std::string_view word ) {
   Yaml const * const value = step.find( "foreign-entries" )->find( word );
   return value ? value->text : "";
}

// Those of the same group and unit replace each other; those of all units replace them all.
void addForeign( Yaml const & step, std::vector< Yaml > & steps ) {
   std::string const unit = wordOf( step, "unit" );
   std::erase_if( steps, [ & ]( Yaml const & other ) {
      return wordOf( other, "group" ) == wordOf( step, "group" ) &&
             ( unit.empty() || unit == wordOf( other, "unit" ) );
   } );
   bool const isFirst = std::none_of( steps.begin(), steps.end(), [ & ]( Yaml const & other ) {
      return wordOf( other, "group" ) == wordOf( step, "group" );
   } );
   if ( !isFirst || wordOf( step, "count" ) != "0" ) {
      steps.push_back( step );
   }
}

}  // namespace

Past pastOf( std::vector< Yaml > const & steps ) {
   Past past;
   for ( Yaml const & step : steps ) {
      if ( step.find( "foreign-entries" ) ) {
         addForeign( step, past.foreignEntries );
      } else if ( Yaml const * const allocator = step.find( "class-id-allocator" ) ) {
         past.isAllocatorPaused = allocator->text == "paused";
      } else if ( Yaml const * const forwarders = step.find( "designated-forwarder" ) ) {
         for ( Yaml const & one : forwarders->parts ) {
            past.designated[ one.key ] = one.text == "true";
         }
      }
      past.hasFrames = past.hasFrames || step.find( "frame" ) || step.find( "frames" );
      past.hasFaults = past.hasFaults || step.find( "fail-call" ) || step.find( "refuse-entry" ) ||
                       step.find( "end-at-call" );
   }
   return past;
}

bool changesState( Yaml const & step ) {
   static constexpr std::array< std::string_view, 6 > others{ "note",   "expect", "dump",
                                                              "verify", "frame",  "frames" };
   return std::none_of( others.begin(), others.end(),
                        [ & ]( std::string_view word ) { return step.find( word ); } );
}

}  // namespace Dumping
