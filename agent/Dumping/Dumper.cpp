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
            return withFewestSteps( start, all - back );
         }
      }
      auto const start = startThatLeads( 0 );
      auto const itsOwn = [ this ]( std::vector< Yaml > const & ) { return original_.scenario; };
      return withFewestSteps( start ? start : itsOwn, 0 );
   }

 private:
   // The fresh start in front of these steps of the original.
   using Start = std::function< Yaml( std::vector< Yaml > const & steps ) >;

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

   // A fresh start from the state after that step, from which the steps behind it lead on; or none.
   Start startThatLeads( std::size_t step ) {
      bool const isLast = step == original_.steps.size();
      auto const state = isLast ? std::optional( state_ ) : switches_.after( step );
      if ( !state ) {
         return {};
      }
      Past const past =
         pastOf( { original_.steps.begin(),
                   original_.steps.begin() + static_cast< std::ptrdiff_t >( step ) } );
      std::vector< Yaml > const behind = stepsBehind( step );
      for ( Order const & order : ordersFor( *state, past ) ) {
         for ( Start const & start : startsFrom( *state, past, order ) ) {
            if ( leads( withSteps( start( behind ), behind ) ) ) {
               return start;
            }
         }
      }
      return {};
   }

   // What no kept step touches can have its last value from the start. That needs fewer steps, so
   // it is tried first.
   std::vector< Start > startsFrom( Story::Table const & state, Past const & past,
                                    Order const & order ) {
      auto const startOf = [ this, past, order ]( Story::Table const & from ) {
         return withoutVlansOfMembers( freshStart( original_.scenario, from, past, order ),
                                       state_ );
      };
      auto const is = switches_.of( startOf( state ) );
      auto const repair = is ? repairs( state, *is ) : std::vector< Yaml >();
      return { [ this, state, startOf, repair ]( std::vector< Yaml > const & steps ) {
                 return withSteps( startOf( mixed( state, state_, steps ) ), repair );
              },
               [ state, startOf, repair ]( std::vector< Yaml > const & ) {
                  return withSteps( startOf( state ), repair );
               } };
   }

   Dump withFewestSteps( Start const & start, std::size_t step ) {
      std::vector< Yaml > steps = stepsBehind( step );
      keepFewest( Shrinking::minimised, start, steps );
      if ( steps.size() <= Shrinking::kMostForPairs ) {
         keepFewest( Shrinking::withoutPairs, start, steps );
      }
      Yaml const scenario = withSteps( start( steps ), steps );
      bool const isSame = leads( scenario );  // also for the numbers of its entries
      return { scenario, steps.size(), isSame,
               steps.empty() ? std::vector< std::string >() : differences_, hasOtherEntryNumbers_ };
   }

   // Leaves out what is not needed, in one of the ways of Shrinking/Minimise.h.
   template< typename Way >
   void keepFewest( Way const & way, Start const & start, std::vector< Yaml > & steps ) {
      auto const chosen = [ & ]( Shrinking::Kept const & kept ) {
         std::vector< Yaml > some;
         for ( std::size_t const number : kept ) {
            some.push_back( steps[ number ] );
         }
         return some;
      };
      auto const doesLead = [ & ]( Shrinking::Kept const & candidate ) {
         auto const some = chosen( candidate );
         return leads( withSteps( start( some ), some ) );
      };
      auto const firstThatDoes = [ & ]( std::vector< Shrinking::Kept > const & candidates ) {
         auto const found = std::find_if( candidates.begin(), candidates.end(), doesLead );
         return found == candidates.end()
                   ? std::nullopt
                   : std::optional( static_cast< std::size_t >( found - candidates.begin() ) );
      };
      steps = chosen( way( steps.size(), firstThatDoes ) );
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
