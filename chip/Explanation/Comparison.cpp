#include <Explanation/Comparison.h>

namespace Chip {

namespace {

bool isSame( U32 got, U32 data, U32 mask ) {
   return ( ( got ^ data ) & mask ) == 0;
}

RuleComparison compareRule( RuleKey const & key, EntryContent const & rule,
                            KeyFields const & frame ) {
   RuleComparison result{ .rule = key, .priority = rule.priority };
   for ( QualifierRow const & row : kQualifierTable ) {
      std::optional< Match > const & match = rule[ row.qualifier ];
      if ( !match ) {
         continue;
      }
      U32 const got = frame[ row.keyPosition ];
      U32 const gotModId = row.hasModule ? frame[ row.keyPosition + 1 ] : 0;
      bool const isSameModule =
         !row.hasModule || isSame( gotModId, match->modId, match->modIdMask );
      if ( !isSameModule || !isSame( got, match->data, match->mask ) ) {
         result.failed.push_back( { row.qualifier, *match, got, gotModId } );
      }
   }
   return result;
}

WonBy wonBy( RuleComparison const & winner, RuleComparison const & second ) {
   if ( winner.priority == second.priority ) {
      return WonBy::Older;
   }
   return winner.priority ? WonBy::HigherPriority : WonBy::NoPriority;
}

// Whether `a` stands above `b`.
bool isAbove( RuleComparison const & a, RuleComparison const & b ) {
   if ( a.failed.size() != b.failed.size() ) {
      return a.failed.size() < b.failed.size();
   }
   switch ( wonBy( a, b ) ) {
   case WonBy::Older: return a.rule.id < b.rule.id;
   case WonBy::HigherPriority: return b.priority && *a.priority > *b.priority;
   default: return true;
   }
}

}  // namespace

GroupComparison compare( Group const * group, U16 unit, KeyFields const & frame,
                         std::size_t nearMisses ) {
   GroupComparison result;
   if ( !group ) {
      return result;
   }
   std::vector< RuleComparison > & rules = result.rules;
   for ( Entry const * const entry : group->entries() ) {
      if ( EntryContent const * const written = entry->written() ) {
         rules.push_back(
            compareRule( { unit, group->assignment(), entry->id() }, *written, frame ) );
      }
   }
   std::sort( rules.begin(), rules.end(), isAbove );
   auto const matches = static_cast< std::size_t >(
      std::count_if( rules.begin(), rules.end(),
                     []( RuleComparison const & rule ) { return rule.isMatch(); } ) );
   if ( matches != 0 ) {
      result.wonBy = matches == 1 ? WonBy::OnlyMatch : wonBy( rules[ 0 ], rules[ 1 ] );
   }
   std::size_t const misses = rules.size() - matches;
   result.leftOut = misses - std::min( misses, nearMisses );
   rules.resize( rules.size() - result.leftOut );
   return result;
}

}  // namespace Chip
