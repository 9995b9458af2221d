#include <Steps/DriftStep.h>

#include <algorithm>
#include <iterator>

#include <fmt/format.h>

#include <Scenario/Shape.h>
#include <Scenario/TcamGroup.h>
#include <Steps/Context.h>
#include <Steps/Drifting.h>

namespace Steps {

namespace {

namespace Shape = Scenario::Shape;

using Scenario::Choices;
using Scenario::Table;
using Scenario::Word;

constexpr U32 kHighestNumber = ~U32{ 0 };
constexpr U32 kHighestPort = Brum::PerUnitBitmap::kBits - 1;

// The words of one drift that the scenario has given.
struct DriftWords {
   Scenario::TcamGroup group = Scenario::TcamGroup::ingress;
   U16 unit = 0;
   std::vector< RuleNamed > rules;
   std::vector< DriftStep::Change > changes;
};

// --- The rule

void readEntryId( Reading & reading, Value const & value, DriftWords & words ) {
   words.rules.emplace_back( numberOf( reading, value, 1, kHighestNumber ).value_or( 1 ) );
}

void readRuleName( Reading & reading, Value const & value, DriftWords & words ) {
   words.rules.emplace_back( stringOf( reading, value ).value_or( "" ) );
}

// --- The change

// The element of `all` with this name; reports a problem for any other name.
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
   reading.problem( line, Scenario::inQuotes( name ) + " is not expected here; known are " +
                             Text::listed( known, "and" ) );
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

// The actions that carry a number.
std::vector< Chip::Action > numberedActions() {
   std::vector< Chip::Action > actions;
   std::copy_if( Chip::kActions.begin(), Chip::kActions.end(), std::back_inserter( actions ),
                 []( Chip::Action action ) {
                    return rowOf( action ).parameters == Chip::ParametersUsed::Number;
                 } );
   return actions;
}

// The parts that carry a number.
Parts numberedParts() {
   Parts parts = qualifiers();
   std::vector< Chip::Action > const actions = numberedActions();
   parts.insert( parts.end(), actions.begin(), actions.end() );
   return parts;
}

std::string shapeOfNumberedActions() {
   std::vector< std::string_view > names;
   for ( Chip::Action const action : numberedActions() ) {
      names.push_back( nameOf( action ) );
   }
   return Shape::json( fmt::format( R"({{"enum": ["{}"]}})", fmt::join( names, R"(", ")" ) ) );
}

RulePart partOf( Reading & reading, Value const & value, Parts const & known ) {
   auto const name = stringOf( reading, value );
   auto const part =
      name ? partNamed< RulePart >( reading, *name, value.line, known ) : std::nullopt;
   return part.value_or( RulePart() );
}

void readFlip( Reading & reading, Value const & value, DriftWords & words ) {
   words.changes.emplace_back( PartFlips{ partOf( reading, value, numberedParts() ) } );
}

void readRemove( Reading & reading, Value const & value, DriftWords & words ) {
   words.changes.emplace_back( PartGoes{ partOf( reading, value, allParts() ) } );
}

void readMask( Reading & reading, Value const & value, DriftWords & words ) {
   for ( Value const & member : mappingOf( reading, value ) ) {
      auto const part = partNamed< RulePart >( reading, member.name, member.line, qualifiers() );
      U32 const mask = numberOf( reading, member, 0, kHighestNumber ).value_or( 0 );
      words.changes.emplace_back( QualifierMaskChanges{
         part ? std::get< Chip::Qualifier >( *part ) : Chip::Qualifier::SrcVxlanGport, mask } );
   }
}

void readEgressMask( Reading & reading, Value const & value, DriftWords & words ) {
   EgressMaskChanges change;
   for ( Value const & element : listOf( reading, value ) ) {
      change.ports.bitSet( numberOf( reading, element, 0, kHighestPort ).value_or( 0 ) );
   }
   words.changes.emplace_back( change );
}

void readPriority( Reading & reading, Value const & value, DriftWords & words ) {
   PriorityChanges change;
   if ( !value.node.IsScalar() || value.node.Scalar() != "default" ) {
      change.priority = numberOf( reading, value, 0, kHighestNumber, ", or default" );
   }
   words.changes.emplace_back( change );
}

Choices< EntryFate > const & fates() {
   static Choices< EntryFate > const choices{ { "entry-is", "What happens to the whole entry." },
                                              { { "erased", EntryFate::erased },
                                                { "destroyed", EntryFate::destroyed },
                                                { "copied", EntryFate::copied } } };
   return choices;
}

void readFate( Reading & reading, Value const & value, DriftWords & words ) {
   words.changes.emplace_back( choiceOf( reading, value, fates() ).value_or( EntryFate::erased ) );
}

// A number is an entry's id, any other text is a part of a rule's name.
void readSwap( Reading & reading, Value const & value, DriftWords & words ) {
   GportsSwap change;
   if ( auto const id = Scenario::numberIn( value ) ) {
      change.with = *id;
   } else {
      change.with = stringOf( reading, value ).value_or( "" );
   }
   words.changes.emplace_back( std::move( change ) );
}

// The words of a drift that stand together.
constexpr std::string_view kWordsTogether = R"({
   "allOf": [
      { "oneOf": [ { "required": [ "entry" ] }, { "required": [ "rule" ] } ] },
      {
         "oneOf": [
            { "required": [ "flip" ] },
            { "required": [ "mask" ] },
            { "required": [ "egress-mask" ] },
            { "required": [ "priority" ] },
            { "required": [ "remove" ] },
            { "required": [ "entry-is" ] },
            { "required": [ "swap-gport-with" ] }
         ]
      }
   ]
})";

std::vector< Word< DriftWords > > wordsOfTheRule() {
   return {
      { { "group", "group: ingress", Shape::of( "tcam-group" ) },
        Scenario::readGroup< DriftWords > },
      { { "unit", "unit: 0", Shape::of( "unit-number" ) }, Scenario::readUnit< DriftWords > },
      { { "entry", "", Shape::number( 1, kHighestNumber, "The entry's id." ) }, readEntryId },
      { { "rule", "",
          Shape::of( "text", "A part of the rule's name that no other rule of the group has." ) },
        readRuleName }
   };
}

std::vector< Word< DriftWords > > wordsOfTheChange() {
   return { { { "flip", "",
                Shape::anyOf( { Shape::of( "qualifier" ), shapeOfNumberedActions() },
                              "The qualifier or action whose lowest bit flips." ) },
              readFlip },
            { { "mask", "",
                Shape::mappingOf( Shape::of( "qualifier" ), Shape::of( "count" ),
                                  "A qualifier by name, with its new mask.",
                                  R"({"minProperties": 1, "maxProperties": 1})" ) },
              readMask },
            { { "egress-mask", "",
                Shape::listOf( Shape::number( 0, kHighestPort ),
                               "The logical ports that the rule masks." ) },
              readEgressMask },
            { { "priority", "",
                Shape::anyOf( { Shape::of( "count" ), Shape::constant( "default" ) },
                              "The priority, or 'default'." ) },
              readPriority },
            { { "remove", "",
                Shape::anyOf( { Shape::of( "qualifier" ), Shape::of( "action" ) },
                              "The qualifier or action that the rule loses." ) },
              readRemove },
            { { "entry-is", "", Shape::of( "entry-is" ) }, readFate },
            { { "swap-gport-with", "",
                Shape::anyOf( { Shape::of( "count" ), Shape::of( "text" ) },
                              "The other rule, by its entry's id or a part of its name." ) },
              readSwap } };
}

Table< DriftWords > const & driftTable() {
   static Table< DriftWords > const table{
      { "drift", "One part of one rule changes in the chip without the plug-in's knowledge.",
        kWordsTogether },
      Scenario::joined< DriftWords >( { wordsOfTheRule(), wordsOfTheChange() } )
   };
   return table;
}

// --- In words

std::string describe( RuleNamed const & rule ) {
   auto const * const id = std::get_if< U32 >( &rule );
   return id ? fmt::format( "entry {}", *id )
             : fmt::format( "the rule named \"{}\"", std::get< std::string >( rule ) );
}

std::string describe( RulePart const & part ) {
   return std::visit( []( auto one ) { return std::string( nameOf( one ) ); }, part );
}

std::string describe( PartFlips const & change ) {
   return "flips a bit of " + describe( change.part );
}

std::string describe( QualifierMaskChanges const & change ) {
   return fmt::format( "gets mask {:#x} of {}", change.mask, nameOf( change.qualifier ) );
}

std::string describe( EgressMaskChanges const & change ) {
   return "masks ports " + Quelm::textOf( change.ports );
}

std::string describe( PriorityChanges const & change ) {
   return change.priority ? fmt::format( "gets priority {}", *change.priority )
                          : "gets the default priority";
}

std::string describe( PartGoes const & change ) {
   return "loses " + describe( change.part );
}

std::string describe( EntryFate const & change ) {
   switch ( change ) {
   case EntryFate::erased: return "is erased from the hardware";
   case EntryFate::destroyed: return "is destroyed";
   case EntryFate::copied: return "is copied";
   }
   return {};
}

std::string describe( GportsSwap const & change ) {
   return "swaps its gport with " + describe( change.with );
}

}  // namespace

std::vector< WordList > DriftStep::vocabulary() {
   return { driftTable().list(), fates().list() };
}

void DriftStep::read( Reading & reading, Value const & value ) {
   DriftWords words;
   readMapping( reading, value, driftTable(), words );
   if ( !value.node.IsMap() || hasStrangers( value, driftTable().list() ) ) {
      return;
   }
   if ( words.rules.size() != 1 ) {
      reading.problem( value.line, "drift needs one of the words 'entry' and 'rule'" );
   }
   bool const isMaskUnread = value.node[ "mask" ] && !value.node[ "mask" ].IsMap();
   if ( words.changes.size() != 1 && !isMaskUnread ) {
      reading.problem( value.line, "drift changes one thing, but this one changes " +
                                      std::to_string( words.changes.size() ) +
                                      "; give one of the words 'flip', 'mask' (of one qualifier), "
                                      "'egress-mask', 'priority', 'remove', 'entry-is' and "
                                      "'swap-gport-with'" );
   }
   if ( words.rules.size() == 1 && words.changes.size() == 1 ) {
      group = words.group;
      unit = words.unit;
      rule = std::move( words.rules.front() );
      change = std::move( words.changes.front() );
   }
}

std::string DriftStep::description() const {
   return fmt::format( "drift: {} of group {} on unit {} {}", describe( rule ), nameOf( group ),
                       unit,
                       std::visit( []( auto const & one ) { return describe( one ); }, change ) );
}

void DriftStep::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] {
      drift( *this, context.board.units(), context.reporter );
   } );
}

}  // namespace Steps
