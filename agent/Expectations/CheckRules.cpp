#include <Expectations/CheckRules.h>

#include <algorithm>
#include <functional>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Snapshot/RuleText.h>
#include <SoftSdk/PortBitmap.h>

namespace Expectations {

namespace {

using Words = std::vector< std::string >;

// The numbers that an expectation names: of a port its module and the port, of a port mask the
// ports.
std::vector< U32 > numbersOf( Chip::Qualifier qualifier, Chip::Match const & match ) {
   return rowOf( qualifier ).hasModule ? std::vector{ match.modId, match.data }
                                       : std::vector{ match.data };
}
std::vector< U32 > numbersOf( Chip::Action action, Chip::ActionParameters const & parameters ) {
   switch ( rowOf( action ).parameters ) {
   case Chip::ParametersUsed::None: break;
   case Chip::ParametersUsed::Number: return { parameters.param0 };
   case Chip::ParametersUsed::Ports: return Chip::portsOf( parameters.ports );
   }
   return {};
}

std::string textOf( Chip::Qualifier part, Chip::EntryContent const & content,
                    Chip::NameOf const & names ) {
   return partText( part, content, names );
}
std::string textOf( Chip::Action part, Chip::EntryContent const & content, Chip::NameOf const & ) {
   return partText( part, content );
}

// `parts` are the chip's qualifiers, or its actions.
void addDifferences( Chip::EntryContent const & content, auto const & parts,
                     std::vector< RuleFieldWanted > const & wanted, Chip::NameOf const & names,
                     Words & differences ) {
   for ( RuleFieldWanted const & one : wanted ) {
      auto const * const part = std::find_if( parts.begin(), parts.end(), [ & ]( auto each ) {
         return nameOf( each ) == one.name;
      } );
      if ( part == parts.end() || !content[ *part ] ) {
         differences.push_back( "no " + one.name );
      } else if ( one.numbers && *one.numbers != numbersOf( *part, *content[ *part ] ) ) {
         differences.push_back( textOf( *part, content, names ) );
      }
   }
}

void addPriority( Chip::EntryContent const & content, RulesLike const & like,
                  Words & differences ) {
   if ( !like.priority ) {
      return;
   }
   auto const * const number = std::get_if< U32 >( &*like.priority );
   if ( content.priority != ( number ? std::optional( *number ) : std::nullopt ) ) {
      differences.push_back( Chip::priorityText( content.priority ) );
   }
}

// The rule's parts that differ from the expectation.
Words differencesOf( Chip::Rule const & rule, RulesLike const & like, Chip::NameOf const & names ) {
   Words differences;
   if ( rule.name.find( like.name ) == std::string::npos ) {
      differences.emplace_back( "another name" );
   }
   addPriority( rule.content, like, differences );
   if ( like.isWritten && *like.isWritten != rule.isWritten ) {
      differences.emplace_back( rule.isWritten ? "been written" : "been staged only" );
   }
   addDifferences( rule.content, Chip::kQualifiers, like.qualifiers, names, differences );
   addDifferences( rule.content, Chip::kActions, like.actions, names, differences );
   for ( Chip::Action const action : Chip::kActions ) {
      if ( like.doesNothing && rule.content[ action ] ) {
         differences.push_back( partText( action, rule.content ) );
      }
   }
   return differences;
}

// The rules in the expectation's group and units.
Chip::Rules rulesAsked( RulesLike const & like, Evidence const & evidence ) {
   Chip::Rules rules;
   auto const group = assignmentOf( like.group );
   evidence.units.forEachEntry( [ & ]( Chip::RuleKey const & key, Chip::Entry const & entry ) {
      if ( key.group == group && ( !like.unit || *like.unit == key.unit ) ) {
         rules.push_back( ruleAt( key, entry ) );
      }
   } );
   return rules;
}

std::string countText( std::ptrdiff_t count ) {
   return count == 1 ? "there is one" : fmt::format( "there are {}", count );
}

}  // namespace

Finding checkRules( RulesLike const & expected, Evidence const & evidence ) {
   std::ptrdiff_t count = 0;
   std::string nearest = "the group has no other rules";
   std::size_t fewest = ~std::size_t{ 0 };
   Chip::NameOf const names = std::cref( evidence.record.names() );
   for ( Chip::Rule const & rule : rulesAsked( expected, evidence ) ) {
      Words const differences = differencesOf( rule, expected, names );
      count += differences.empty() ? 1 : 0;
      if ( !differences.empty() && differences.size() < fewest ) {
         fewest = differences.size();
         nearest = fmt::format( "the nearest is {}, which has {}", headingText( rule ),
                                fmt::join( differences, " and " ) );
      }
   }
   bool const isTooFew = count < std::ptrdiff_t{ expected.count.value_or( 1 ) };
   bool const isAsExpected =
      expected.count ? count == std::ptrdiff_t{ *expected.count } : !isTooFew;
   return { isAsExpected, countText( count ) + ( isTooFew ? "; " + nearest : "" ) };
}

}  // namespace Expectations
