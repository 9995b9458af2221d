#include <Expectations/Rules.h>

#include <algorithm>
#include <array>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Brum/PerUnitBitmap.h>
#include <Expectations/CheckRules.h>
#include <FieldProcessor/Fields.h>
#include <Scenario/Shape.h>
#include <Snapshot/RuleText.h>
#include <Story/Wording.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

using Scenario::Choices;
using Scenario::Table;

constexpr U32 kHighestNumber = ~U32{ 0 };

// --- Qualifiers and actions

using Fields = std::vector< RuleFieldWanted >;

// A number, a list of numbers, or nothing where any will do.
std::optional< std::vector< U32 > > numbersOf( Reading & reading, Value const & value,
                                               U32 highest ) {
   if ( value.node.IsNull() ) {
      return std::nullopt;
   }
   std::vector< U32 > numbers;
   if ( !value.node.IsSequence() ) {
      numbers.push_back( numberOf( reading, value, 0, highest ).value_or( 0 ) );
      return numbers;
   }
   for ( Value const & element : listOf( reading, value ) ) {
      numbers.push_back( numberOf( reading, element, 0, highest ).value_or( 0 ) );
   }
   return numbers;
}

// The ports of a port mask, in the order in which the chip gives them.
std::optional< std::vector< U32 > > portsOf( Reading & reading, Value const & value ) {
   constexpr U32 kHighestPort = Brum::PerUnitBitmap::kBits - 1;
   auto ports = numbersOf( reading, value, kHighestPort );
   if ( ports ) {
      std::sort( ports->begin(), ports->end() );
   }
   return ports;
}

// A port has two numbers, a field without data none, and all others one.
std::size_t countOfNumbers( Chip::Qualifier qualifier ) {
   return rowOf( qualifier ).hasModule ? 2 : 1;
}
std::size_t countOfNumbers( Chip::Action action ) {
   return rowOf( action ).parameters == Chip::ParametersUsed::None ? 0 : 1;
}

// As many numbers as the part of a rule has.
template< typename Part >
std::optional< std::vector< U32 > > numbersFor( Part part, Reading & reading,
                                                Value const & value ) {
   auto const numbers = numbersOf( reading, value, kHighestNumber );
   std::size_t const count = countOfNumbers( part );
   if ( numbers && numbers->size() != count ) {
      constexpr std::array< std::string_view, 3 > expected{
         "nothing is expected", "one number is expected",
         "module and port are expected, as in [ 1, 3 ]"
      };
      reading.problem( value.line, value.name + " has " + std::to_string( numbers->size() ) +
                                      ( numbers->size() == 1 ? " number; " : " numbers; " ) +
                                      std::string( expected[ count ] ) );
   }
   return numbers;
}

// The data that a rule can have there.
std::optional< std::vector< U32 > > dataOf( Reading & reading, Value const & value,
                                            Chip::Qualifier qualifier ) {
   return numbersFor( qualifier, reading, value );
}
std::optional< std::vector< U32 > > dataOf( Reading & reading, Value const & value,
                                            Chip::Action action ) {
   return rowOf( action ).parameters == Chip::ParametersUsed::Ports
             ? portsOf( reading, value )
             : numbersFor( action, reading, value );
}

template< typename Parts >
void readFields( Reading & reading, Value const & value, Parts const & parts, Fields & fields ) {
   std::vector< std::string_view > known;
   for ( auto const part : parts ) {
      known.push_back( Chip::nameOf( part ) );
   }
   for ( Value const & field : mappingOf( reading, value ) ) {
      auto const found = std::find( known.begin(), known.end(), field.name );
      if ( found == known.end() ) {
         reading.problem( field.line, Scenario::inQuotes( field.name ) + " is none of a rule's " +
                                         value.name + "; " + Text::knownOnes( known ) );
         continue;
      }
      auto const part = parts[ static_cast< std::size_t >( found - known.begin() ) ];
      fields.push_back( { field.name, dataOf( reading, field, part ) } );
   }
}

void readQualifiers( Reading & reading, Value const & value, RulesLike & rules ) {
   readFields( reading, value, Chip::kQualifiers, rules.qualifiers );
}

void readActions( Reading & reading, Value const & value, RulesLike & rules ) {
   if ( value.node.IsScalar() && value.node.Scalar() == "none" ) {
      rules.doesNothing = true;
   } else {
      readFields( reading, value, Chip::kActions, rules.actions );
   }
}

template< typename Names > WordList namesOf( Scenario::Place const & place, Names const & names ) {
   WordList list{ place, {}, true };
   for ( auto const name : names ) {
      list.words.push_back( { Chip::nameOf( name ), {} } );
   }
   return list;
}

// --- The other words

void readPriority( Reading & reading, Value const & value, RulesLike & rules ) {
   if ( value.node.IsScalar() && value.node.Scalar() == "default" ) {
      rules.priority = RulesLike::DefaultPriority{};
   } else if ( auto const priority =
                  numberOf( reading, value, 0, kHighestNumber, ", or default" ) ) {
      rules.priority = *priority;
   }
}

Choices< bool > const & writtenOrStaged() {
   static Choices< bool > const choices{ { "written",
                                           "Whether a rule is in the hardware, or only staged." },
                                         { { "written", true }, { "staged-only", false } } };
   return choices;
}

void readState( Reading & reading, Value const & value, RulesLike & rules ) {
   rules.isWritten = choiceOf( reading, value, writtenOrStaged() );
}

constexpr std::string_view kQualifiers = R"({
   "type": "object",
   "propertyNames": { "$ref": "#/definitions/qualifier" },
   "allOf": [
      {
         "properties": {
            "DstPort": {
               "description": "Module and port.",
               "anyOf": [
                  {
                     "type": "array",
                     "items": { "$ref": "#/definitions/count" },
                     "minItems": 2,
                     "maxItems": 2
                  },
                  { "type": "null" }
               ]
            }
         },
         "additionalProperties": { "$ref": "#/definitions/field-number" }
      }
   ]
})";

constexpr std::string_view kActions = R"({
   "type": "object",
   "propertyNames": { "$ref": "#/definitions/action" },
   "allOf": [
      {
         "properties": {
            "EgressMask": {
               "anyOf": [
                  { "$ref": "#/definitions/logical-port" },
                  { "type": "array", "items": { "$ref": "#/definitions/logical-port" } },
                  { "type": "null" }
               ]
            },
            "Drop": { "anyOf": [ { "type": "array", "maxItems": 0 }, { "type": "null" } ] }
         },
         "additionalProperties": { "$ref": "#/definitions/field-number" }
      }
   ]
})";

Table< RulesLike > const & rulesTable() {
   static Table< RulesLike > const table{
      { "rules", "Rules that the plug-in holds in a group and that match the other words." },
      { { { "group", "group: ingress", Shape::of( "tcam-group" ) },
          Scenario::readGroup< RulesLike > },
        { { "unit", "",
            Shape::of( "unit-number", "The unit to look at; all of them if left out." ) },
          Scenario::readUnit< RulesLike > },
        { { "name", "", Shape::of( "text", "A part of the rule's name." ) },
          Scenario::readText< RulesLike, &RulesLike::name > },
        { { "state", "", Shape::of( "written" ) }, readState },
        { { "priority", "",
            Shape::anyOf( { Shape::of( "count" ), Shape::constant( "default" ) },
                          "The rule's priority, or 'default'." ) },
          readPriority },
        { { "qualifiers", "",
            Shape::json( kQualifiers,
                         "Qualifiers by name with their data; nothing where any data will do." ) },
          readQualifiers },
        { { "actions", "",
            Shape::anyOf(
               { Shape::json( kActions ), Shape::constant( "none" ) },
               "Actions by name with their data or ports, nothing where any will do; 'none' for a "
               "rule without actions." ) },
          readActions },
        { { "count", "",
            Shape::of( "count", "The number of such rules; one or more if left out." ) },
          Scenario::readNumber< RulesLike, &RulesLike::count, 0, kHighestNumber > } }
   };
   return table;
}

// --- In words

// "4 (known unicast)", "0x56000002", "1, 3".
std::string numbersText( RuleFieldWanted const & field ) {
   auto const * const row =
      std::find_if( Chip::kQualifierTable.begin(), Chip::kQualifierTable.end(),
                    [ & ]( Chip::QualifierRow const & one ) { return one.name == field.name; } );
   if ( field.numbers->size() != 1 || row == Chip::kQualifierTable.end() ) {
      return fmt::format( "{}", fmt::join( *field.numbers, ", " ) );
   }
   // The mask makes no difference to the text.
   Chip::Match const match{ field.numbers->front(), BCM_FIELD_EXACT_MATCH_MASK };
   return valueText( row->qualifier, match, Chip::nameInChip );
}

std::string describe( std::vector< RuleFieldWanted > const & fields ) {
   std::string text;
   for ( RuleFieldWanted const & field : fields ) {
      text += ( text.empty() ? "" : " and " ) + field.name;
      if ( field.numbers ) {
         text += field.numbers->empty() ? " nothing" : " " + numbersText( field );
      }
   }
   return text;
}

std::string describePriority( RulesLike const & what ) {
   auto const * const number = std::get_if< U32 >( &*what.priority );
   return number ? fmt::format( "priority {}", *number ) : "the default priority";
}

}  // namespace

std::vector< WordList > RulesLike::vocabulary() {
   return { rulesTable().list(), writtenOrStaged().list(),
            namesOf( { "qualifier", "A qualifier of a rule." }, Chip::kQualifiers ),
            namesOf( { "action", "An action of a rule." }, Chip::kActions ) };
}

void RulesLike::read( Reading & reading, Value const & value ) {
   readMapping( reading, value, rulesTable(), *this );
}

std::string RulesLike::description() const {
   std::string text =
      fmt::format( "{} in group {}{}",
                   count ? Story::counted( *count, "rule" ) : "one or more rules", nameOf( group ),
                   unit ? fmt::format( " of unit {}", *unit ) : "" );
   auto const add = [ & ]( bool isAsked, std::string const & more ) {
      text += isAsked ? ", " + more : "";
   };
   add( !name.empty(), "named \"" + name + '"' );
   add( !qualifiers.empty(), "matching " + describe( qualifiers ) );
   add( !actions.empty(), "doing " + describe( actions ) );
   add( doesNothing, "doing nothing" );
   add( priority.has_value(), priority ? describePriority( *this ) : "" );
   add( isWritten.has_value(), isWritten.value_or( true ) ? "written" : "staged only" );
   return text;
}

Finding RulesLike::check( Evidence const & evidence ) const {
   return checkRules( *this, evidence );
}

}  // namespace Expectations
