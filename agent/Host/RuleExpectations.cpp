#include <Host/RuleExpectations.h>

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Reporters/ChipReporter.h>
#include <Story/Wording.h>

namespace Host {

namespace {

using Fields = std::vector< Story::RuleField >;
using Words = std::vector< std::string >;

std::vector< U32 > numbersOf( Story::RuleField const & field ) {
   std::vector< U32 > numbers = field.ports.value_or( std::vector< U32 >() );
   for ( Story::RuleValue const & value : field.values ) {
      numbers.push_back( static_cast< U32 >( value.data ) );
   }
   return numbers;
}

// "EgressMask 3, 4", in the numbers that an expectation is written in.
std::string textOf( Story::RuleField const & field ) {
   std::vector< U32 > const numbers = numbersOf( field );
   return numbers.empty() ? field.name
                          : fmt::format( "{} {}", field.name, fmt::join( numbers, ", " ) );
}

void addDifferences( Fields const & fields, std::vector< Scenario::RuleFieldWanted > const & wanted,
                     Words & differences ) {
   for ( Scenario::RuleFieldWanted const & one : wanted ) {
      auto const field =
         std::find_if( fields.begin(), fields.end(),
                       [ & ]( Story::RuleField const & each ) { return each.name == one.name; } );
      if ( field == fields.end() ) {
         differences.push_back( "no " + one.name );
      } else if ( one.numbers && *one.numbers != numbersOf( *field ) ) {
         differences.push_back( textOf( *field ) );
      }
   }
}

void addPriority( Story::Rule const & rule, Scenario::RulesLike const & like,
                  Words & differences ) {
   if ( !like.priority ) {
      return;
   }
   auto const * const number = std::get_if< U32 >( &*like.priority );
   if ( rule.priority != ( number ? std::optional( *number ) : std::nullopt ) ) {
      differences.push_back( rule.priority ? fmt::format( "priority {}", *rule.priority )
                                           : "the default priority" );
   }
}

// What the rule has that is not as expected.
Words differencesOf( Story::Rule const & rule, Scenario::RulesLike const & like ) {
   Words differences;
   if ( rule.name.find( like.name ) == std::string::npos ) {
      differences.emplace_back( "another name" );
   }
   addPriority( rule, like, differences );
   if ( like.isWritten && *like.isWritten != rule.isWritten ) {
      differences.emplace_back( rule.isWritten ? "been written" : "been staged only" );
   }
   addDifferences( rule.qualifiers, like.qualifiers, differences );
   addDifferences( rule.actions, like.actions, differences );
   if ( like.doesNothing ) {
      std::transform( rule.actions.begin(), rule.actions.end(), std::back_inserter( differences ),
                      textOf );
   }
   return differences;
}

// The rules that an expectation asks about.
std::vector< Story::Rule > rulesAsked( Scenario::RulesLike const & like,
                                       Evidence const & evidence ) {
   std::vector< Story::Rule > rules;
   for ( auto const & [ number, unit ] : evidence.units ) {
      auto const group = unit.groups().find( assignmentOf( like.group ) );
      bool const isAsked = !like.unit || *like.unit == number;
      if ( isAsked && group != unit.groups().end() ) {
         for ( auto const & [ id, entry ] : group->second.entries() ) {
            rules.push_back( Reporters::ruleOf( { number, group->first, id }, entry ) );
         }
      }
   }
   return rules;
}

std::string countText( std::ptrdiff_t count ) {
   return count == 1 ? "there is one" : fmt::format( "there are {}", count );
}

}  // namespace

Finding checkRules( Scenario::RulesLike const & expected, Evidence const & evidence ) {
   std::ptrdiff_t count = 0;
   std::string nearest = "the group has no other rules";
   std::size_t fewest = ~std::size_t{ 0 };
   for ( Story::Rule const & rule : rulesAsked( expected, evidence ) ) {
      Words const differences = differencesOf( rule, expected );
      count += differences.empty() ? 1 : 0;
      if ( !differences.empty() && differences.size() < fewest ) {
         fewest = differences.size();
         nearest = fmt::format( "the nearest is {}, which has {}", headingOf( rule ),
                                fmt::join( differences, " and " ) );
      }
   }
   bool const isTooFew = count < std::ptrdiff_t{ expected.count.value_or( 1 ) };
   bool const isAsExpected =
      expected.count ? count == std::ptrdiff_t{ *expected.count } : !isTooFew;
   return { isAsExpected, countText( count ) + ( isTooFew ? "; " + nearest : "" ) };
}

}  // namespace Host
