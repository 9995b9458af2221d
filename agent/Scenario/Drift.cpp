#include <algorithm>

#include <Scenario/Parts.h>

namespace Scenario {

namespace {

constexpr U32 kHighestNumber = ~U32{ 0 };

// The words of one drift, as far as they are there.
struct DriftWords {
   Drift drift;
   std::vector< RuleNamed > rules;
   std::vector< Drift::Change > changes;
};

// --- Which rule

void readGroup( Reading & reading, Value const & value, DriftWords & words ) {
   words.drift.group = choiceOf( reading, value, tcamGroups() ).value_or( TcamGroup::ingress );
}

void readUnit( Reading & reading, Value const & value, DriftWords & words ) {
   auto const number = numberOf( reading, value, 0, 0xffff );
   if ( number && reading.module( static_cast< U16 >( *number ), value.line ) ) {
      words.drift.unit = static_cast< U16 >( *number );
   }
}

void readEntryId( Reading & reading, Value const & value, DriftWords & words ) {
   words.rules.emplace_back( numberOf( reading, value, 1, kHighestNumber ).value_or( 1 ) );
}

void readRuleName( Reading & reading, Value const & value, DriftWords & words ) {
   words.rules.emplace_back( stringOf( reading, value ).value_or( "" ) );
}

// --- What changes

// The one of `all` whose name is `name`; a problem and nothing for any other.
template< typename Part, typename All >
std::optional< Part > partNamed( Reading & reading, std::string const & name, int line,
                                 All const & all ) {
   std::vector< std::string_view > known;
   for ( Part const & part : all ) {
      known.push_back( std::visit( []( auto one ) { return nameOf( one ); }, part ) );
      if ( known.back() == name ) {
         return part;
      }
   }
   reading.problem( line, inQuotes( name ) + " is not expected here; known are " +
                             listed( known, "and" ) );
   return std::nullopt;
}

using Parts = std::vector< RulePart >;

Parts qualifiers() {
   return { Chip::kQualifiers.begin(), Chip::kQualifiers.end() };
}

Parts allParts() {
   Parts parts = qualifiers();
   parts.insert( parts.end(), Chip::kActions.begin(), Chip::kActions.end() );
   return parts;
}

// Those that carry a number.
Parts numberedParts() {
   Parts parts = qualifiers();
   parts.insert( parts.end(), { Chip::Action::EgressClassSelect, Chip::Action::NewClassId } );
   return parts;
}

void readFlip( Reading & reading, Value const & value, DriftWords & words ) {
   std::string const name = stringOf( reading, value ).value_or( "" );
   words.changes.emplace_back(
      PartFlips{ partNamed< RulePart >( reading, name, value.line, numberedParts() )
                    .value_or( RulePart() ) } );
}

void readRemove( Reading & reading, Value const & value, DriftWords & words ) {
   std::string const name = stringOf( reading, value ).value_or( "" );
   words.changes.emplace_back( PartGoes{
      partNamed< RulePart >( reading, name, value.line, allParts() ).value_or( RulePart() ) } );
}

void readMask( Reading & reading, Value const & value, DriftWords & words ) {
   for ( Value const & member : mappingOf( reading, value ) ) {
      auto const part = partNamed< RulePart >( reading, member.name, member.line, qualifiers() );
      U32 const mask = numberOf( reading, member, 0, kHighestNumber ).value_or( 0 );
      words.changes.emplace_back( QualifierMaskIs{
         part ? std::get< Chip::Qualifier >( *part ) : Chip::Qualifier::SrcVxlanGport, mask } );
   }
}

void readEgressMask( Reading & reading, Value const & value, DriftWords & words ) {
   EgressMaskIs change;
   for ( Value const & element : listOf( reading, value ) ) {
      change.ports.bitSet(
         numberOf( reading, element, 0, Brum::PerUnitBitmap::kBits - 1 ).value_or( 0 ) );
   }
   words.changes.emplace_back( change );
}

void readPriority( Reading & reading, Value const & value, DriftWords & words ) {
   PriorityIs change;
   if ( !value.node.IsScalar() || value.node.Scalar() != "default" ) {
      change.priority = numberOf( reading, value, 0, kHighestNumber, ", or default" );
   }
   words.changes.emplace_back( change );
}

Choices< EntryFate > const & fates() {
   static Choices< EntryFate > const choices{ "entry-is",
                                              { { "erased", EntryFate::erased },
                                                { "destroyed", EntryFate::destroyed },
                                                { "copied", EntryFate::copied } } };
   return choices;
}

void readFate( Reading & reading, Value const & value, DriftWords & words ) {
   words.changes.emplace_back( choiceOf( reading, value, fates() ).value_or( EntryFate::erased ) );
}

// A number is an entry's id, anything else is from a rule's name.
void readSwap( Reading & reading, Value const & value, DriftWords & words ) {
   GportsSwap change;
   if ( auto const id = numberIn( value ) ) {
      change.with = *id;
   } else {
      change.with = stringOf( reading, value ).value_or( "" );
   }
   words.changes.emplace_back( std::move( change ) );
}

Table< DriftWords > const & driftTable() {
   static Table< DriftWords > const table{ "drift",
                                           { { { "group", "group: ingress" }, readGroup },
                                             { { "unit", "unit: 0" }, readUnit },
                                             { { "entry", "" }, readEntryId },
                                             { { "rule", "" }, readRuleName },
                                             { { "flip", "" }, readFlip },
                                             { { "mask", "" }, readMask },
                                             { { "egress-mask", "" }, readEgressMask },
                                             { { "priority", "" }, readPriority },
                                             { { "remove", "" }, readRemove },
                                             { { "entry-is", "" }, readFate },
                                             { { "swap-gport-with", "" }, readSwap } } };
   return table;
}

}  // namespace

void readDrift( Reading & reading, Value const & value, Drift & drift ) {
   DriftWords words;
   readMapping( reading, value, driftTable(), words );
   if ( !value.node.IsMap() ) {
      return;
   }
   if ( words.rules.size() != 1 ) {
      reading.problem( value.line, "drift needs one of the words 'entry' and 'rule'" );
   }
   if ( words.changes.size() != 1 ) {
      reading.problem( value.line, "drift changes one thing, this one " +
                                      std::to_string( words.changes.size() ) +
                                      "; give one of the words 'flip', 'mask' (of one qualifier), "
                                      "'egress-mask', 'priority', 'remove', 'entry-is' and "
                                      "'swap-gport-with'" );
   }
   if ( words.rules.size() == 1 && words.changes.size() == 1 ) {
      drift = std::move( words.drift );
      drift.rule = std::move( words.rules.front() );
      drift.change = std::move( words.changes.front() );
   }
}

std::vector< WordList > driftVocabulary() {
   return { driftTable().list(), fates().list() };
}

}  // namespace Scenario
