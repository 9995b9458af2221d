#include <Dumping/Dumper.h>

#include <algorithm>
#include <regex>

#include <Dumping/Items.h>
#include <Shrinking/Minimise.h>

namespace Dumping {

namespace {

using Scenario::Yaml;

// Whether the difference is one of numbers alone, that entries have in the chip.
bool isOfEntryNumber( Story::Node const & kind, Story::Node const & difference ) {
   static std::regex const numbers(
      ".*/(entryId|efpEntryId|l2UcastRuleInstalled|l3UcastRuleInstalled|vniToTcamEntryId)\\[.*" );
   auto const isThere = [ & ]( std::size_t value ) {
      return !std::holds_alternative< std::monostate >( difference.values.at( value ).cell.value );
   };
   return kind.kind == "record" && isThere( 1 ) && isThere( 2 ) &&
          std::regex_match( difference.values.at( 0 ).cell.words(), numbers );
}

class Dumper {
 public:
   Dumper( Original const & original, Story::Table const & state, Switches const & switches )
         : original_{ withoutVlansOfMembers( original.scenario, state ), original.steps },
           state_( state ),
           switches_( switches ) {
      original_.scenario.remove( "description" );
      original_.scenario.remove( "trace" );
   }

   Dump dumped() {
      std::size_t const all = original_.steps.size();
      for ( std::size_t back = 0; back < all; back = std::max( back * 2, std::size_t{ 1 } ) ) {
         if ( auto const start = startThatLeads( all - back ) ) {
            return withFewestSteps( *start, all - back );
         }
      }
      auto const start = startThatLeads( 0 );
      return withFewestSteps( start.value_or( original_.scenario ), 0 );
   }

 private:
   struct Compared {
      std::vector< std::string > differences;
      bool hasOtherEntryNumbers = false;
   };

   Compared compared( Story::Table const & is ) const {
      Compared result;
      for ( Story::Node const & kind : switches_.between( state_, is ).children ) {
         for ( Story::Node const & difference : kind.children ) {
            if ( isOfEntryNumber( kind, difference ) ) {
               result.hasOtherEntryNumbers = true;
            } else {
               result.differences.push_back( difference.text );
            }
         }
      }
      return result;
   }

   // The steps behind that one which change the state.
   std::vector< Yaml > stepsBehind( std::size_t step ) const {
      std::vector< Yaml > steps( original_.steps.begin() + static_cast< std::ptrdiff_t >( step ),
                                 original_.steps.end() );
      std::erase_if( steps, []( Yaml const & one ) { return !changesState( one ); } );
      return steps;
   }

   static Yaml withSteps( Yaml scenario, std::vector< Yaml > const & steps ) {
      for ( Yaml const & step : steps ) {
         scenario.part( "steps" ).add( step );
      }
      return scenario;
   }

   // Whether it leads to the state.
   bool leads( Yaml const & scenario ) {
      auto const is = switches_.of( scenario );
      Compared const result = is ? compared( *is ) : Compared{ { "it does not get so far" } };
      if ( result.differences.empty() ) {
         hasOtherEntryNumbers_ = result.hasOtherEntryNumbers;
      } else if ( differences_.empty() ) {
         differences_ = result.differences;
      }
      return result.differences.empty();
   }

   // A fresh start from the state after that step, from which the steps behind it lead on.
   std::optional< Yaml > startThatLeads( std::size_t step ) {
      bool const isLast = step == original_.steps.size();
      auto const state = isLast ? std::optional( state_ ) : switches_.after( step );
      if ( !state ) {
         return std::nullopt;
      }
      Past const past =
         pastOf( { original_.steps.begin(),
                   original_.steps.begin() + static_cast< std::ptrdiff_t >( step ) } );
      for ( Order const & order : ordersFor( *state, past ) ) {
         Yaml start =
            withoutVlansOfMembers( freshStart( original_.scenario, *state, past, order ), state_ );
         auto const is = switches_.of( start );
         start =
            withSteps( std::move( start ), is ? repairs( *state, *is ) : std::vector< Yaml >() );
         if ( leads( withSteps( start, stepsBehind( step ) ) ) ) {
            return start;
         }
      }
      return std::nullopt;
   }

   Dump withFewestSteps( Yaml const & start, std::size_t step ) {
      std::vector< Yaml > const steps = stepsBehind( step );
      auto const chosen = [ & ]( Shrinking::Kept const & kept ) {
         std::vector< Yaml > some;
         for ( std::size_t const number : kept ) {
            some.push_back( steps[ number ] );
         }
         return withSteps( start, some );
      };
      auto const kept = Shrinking::minimised(
         steps.size(), [ & ]( std::vector< Shrinking::Kept > const & candidates ) {
            auto const found = std::find_if( candidates.begin(), candidates.end(),
                                             [ & ]( Shrinking::Kept const & candidate ) {
                                                return leads( chosen( candidate ) );
                                             } );
            return found == candidates.end()
                      ? std::nullopt
                      : std::optional( static_cast< std::size_t >( found - candidates.begin() ) );
         } );
      Yaml const scenario = chosen( kept );
      bool const isSame = leads( scenario );  // also for the numbers of its entries
      return { scenario, kept.size(), isSame,
               kept.empty() ? std::vector< std::string >() : differences_, hasOtherEntryNumbers_ };
   }

   Original original_;
   Story::Table const & state_;
   Switches const & switches_;
   std::vector< std::string > differences_;  // of the first try that did not lead there
   bool hasOtherEntryNumbers_ = false;       // in the last try that did
};

}  // namespace

Dump dumped( Original const & original, Story::Table const & state, Switches const & switches ) {
   return Dumper( original, state, switches ).dumped();
}

}  // namespace Dumping
