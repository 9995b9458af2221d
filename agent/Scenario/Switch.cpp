#include <Audit/Variant.h>
#include <Scenario/Interfaces.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Scenario/TcamGroup.h>

namespace Scenario {

namespace {

constexpr U32 kHighestNumber = 0xffff;  // of a unit or a module

struct UnitWords {
   std::optional< U32 > module;
};

void readName( Reading & reading, Value const & value, Model & model ) {
   model.device.name = stringOf( reading, value ).value_or( "" );
}

void readSlice( Reading & reading, Value const & value, Model & model ) {
   auto const slice = stringOf( reading, value );
   if ( slice && slice->find_first_of( "/ " ) != std::string::npos ) {
      reading.problem( value.line, "slice is " + inQuotes( *slice ) +
                                      "; a text without '/' and blanks is expected, as it is part "
                                      "of mount paths" );
   }
   model.device.slice = slice.value_or( model.device.slice );
}

void readVariant( Reading & reading, Value const & value, Model & model ) {
   model.device.variant = choiceOf( reading, value, variants() ).value_or( Variant::egressMask );
}

Table< UnitWords > const & unitTable() {
   static Table< UnitWords > const table{
      { "unit", "One forwarding chip." },
      { { { "module", "module: 1",
            Shape::number( 0, kHighestNumber,
                           "The chip's address on the fabric; each unit has its own." ) },
          readNumber< UnitWords, &UnitWords::module, 0, kHighestNumber > } }
   };
   return table;
}

std::optional< U16 > unitIn( Reading & reading, std::string const & text, int line ) {
   auto const number = numberIn( text );
   if ( !number || *number > kHighestNumber ) {
      reading.problem( line, "unit is " + inQuotes( text ) +
                                "; a whole number from 0 to 65535 is expected" );
      return std::nullopt;
   }
   return static_cast< U16 >( *number );
}

void readUnits( Reading & reading, Value const & value, Model & model ) {
   std::map< U32, U16 > unitOfModule;
   for ( auto const & [ number, about ] : namedOf( reading, value, unitIn, kNumbersOfUnits ) ) {
      UnitWords words;
      readMapping( reading, { about.node, about.line, "unit " + about.name }, unitTable(), words );
      SwitchUnit const unit{ number, static_cast< U16 >( words.module.value_or( 0 ) ) };
      reading.addUnit( unit );
      model.device.units.push_back( unit );
      if ( words.module && !unitOfModule.try_emplace( *words.module, number ).second ) {
         reading.problem( about.line, "module " + std::to_string( unit.module ) + " is unit " +
                                         std::to_string( unitOfModule[ *words.module ] ) +
                                         "'s already; give each unit its own" );
      }
   }
   if ( value.node.IsMap() && value.node.size() == 0 ) {
      reading.problem( value.line, "units is empty; give one at least, as in '0: { module: 1 }'" );
   }
   std::sort( model.device.units.begin(), model.device.units.end(),
              []( SwitchUnit const & a, SwitchUnit const & b ) { return a.number < b.number; } );
}

// A group's entries per unit, or `none` if the switch has no such group.
template< std::optional< U32 > Tcam::*group >
void readGroup( Reading & reading, Value const & value, Tcam & tcam ) {
   bool const isNone = value.node.IsScalar() && value.node.Scalar() == "none";
   tcam.*group =
      isNone ? std::nullopt : numberOf( reading, value, 0, Tcam::kMostEntries, ", or none" );
}

Table< Tcam > const & tcamTable() {
   static Table< Tcam > const table{
      { "tcam", "The size of the field-processor groups, in entries per unit." },
      { { { "ingress", "",
            Shape::of( "entries",
                       "The ingress group, number 157. 256 if left out; 'none' for a switch "
                       "without it." ) },
          readGroup< &Tcam::ingress > },
        { { "egress", "",
            Shape::of(
               "entries",
               "The egress group, number 45. 256 if left out; 'none' for a switch without it." ) },
          readGroup< &Tcam::egress > } }
   };
   return table;
}

void readTcam( Reading & reading, Value const & value, Model & model ) {
   readMapping( reading, value, tcamTable(), model.device.tcam );
}

template< U16 ClassIds::*end >
void readClassIdEnd( Reading & reading, Value const & value, ClassIds & classIds ) {
   if ( auto const id = numberOf( reading, value, 0, ClassIds::kHighest ) ) {
      classIds.*end = static_cast< U16 >( *id );
   }
}

constexpr U32 kLongestDelay = 1'000'000;

void readClassIdDelay( Reading & reading, Value const & value, ClassIds & classIds ) {
   classIds.delay = numberOf( reading, value, 0, kLongestDelay ).value_or( 0 );
}

// JSON Schema can check this only if one of the two is left out.
constexpr std::string_view kFirstIsNotAboveLast = R"({
   "dependencies": {
      "first": {
         "anyOf": [
            { "properties": { "first": { "maximum": 4095 } } }, { "required": [ "last" ] }
         ]
      },
      "last": {
         "anyOf": [ { "properties": { "last": { "minimum": 1 } } }, { "required": [ "first" ] } ]
      }
   }
})";

Table< ClassIds > const & classIdsTable() {
   static Table< ClassIds > const table{
      { "class-ids", "The ids that the central allocator of class ids hands out.",
        kFirstIsNotAboveLast },
      { { { "first", "", Shape::number( 0, ClassIds::kHighest, "The lowest id; 1 if left out." ) },
          readClassIdEnd< &ClassIds::first > },
        { { "last", "",
            Shape::number( 0, ClassIds::kHighest, "The highest id; 4095 if left out." ) },
          readClassIdEnd< &ClassIds::last > },
        { { "delay", "",
            Shape::number( 0, kLongestDelay,
                           "The turns of the activity that a grant takes in addition to its own; 0 "
                           "if left out." ) },
          readClassIdDelay } }
   };
   return table;
}

void readClassIds( Reading & reading, Value const & value, Model & model ) {
   ClassIds & classIds = model.device.classIds;
   readMapping( reading, value, classIdsTable(), classIds );
   if ( classIds.last < classIds.first ) {
      reading.problem( value.line, "class-ids end at " + std::to_string( classIds.last ) +
                                      " before they begin at " + std::to_string( classIds.first ) +
                                      "; 'last' is the highest id" );
   }
}

void readL3MulticastExempt( Reading & reading, Value const & value, Model & model ) {
   model.device.isL3MulticastExempt = yesOrNoOf( reading, value ).value_or( false );
}

void readSwitchInterfaces( Reading & reading, Value const & value, Model & model ) {
   readInterfaces( reading, value, model.published );
}

void readSwitchPortChannels( Reading & reading, Value const & value, Model & model ) {
   readPortChannels( reading, value, model.published );
}

Table< Model > const & switchTable() {
   static Table< Model > const table{
      { "switch", "The switch on which the plug-in runs." },
      { { { "name", "name: leaf1", Shape::of( "text", "The switch's name." ) }, readName },
        { { "slice", "", Shape::of( "slice" ) }, readSlice },
        { { "variant", "variant: egress-mask", Shape::of( "variant" ) }, readVariant },
        { { "units", "units: { 0: { module: 1 } }",
            Shape::mappingOf( Shape::of( "unit-key" ), Shape::of( "unit" ),
                              "The forwarding chips that the agent drives, by unit number.",
                              R"({"minProperties": 1})" ) },
          readUnits },
        { { "tcam", "", Shape::of( "tcam" ) }, readTcam },
        { { "class-ids", "", Shape::of( "class-ids" ) }, readClassIds },
        { { "l3-multicast-exempt", "",
            Shape::of( "yes-or-no",
                       "Whether the platform needs no per-VNI rules for known L3 multicast. false "
                       "if left out." ) },
          readL3MulticastExempt },
        { { "interfaces", "", Shape::of( "interfaces" ) }, readSwitchInterfaces },
        { { "port-channels", "", Shape::of( "port-channels" ) }, readSwitchPortChannels } }
   };
   return table;
}

}  // namespace

Choices< Variant > const & variants() {
   static Choices< Variant > const choices = [] {
      Choices< Variant > all{
         { "variant",
           "The chip's capabilities, which decide which state machine the plug-in builds." },
         {}
      };
      for ( Audit::VariantRow const & row : Audit::variantRows() ) {
         all.all.push_back( { row.word, row.variant } );
      }
      return all;
   }();
   return choices;
}

void readSwitch( Reading & reading, Value const & value, Model & model ) {
   readMapping( reading, value, switchTable(), model );
}

std::vector< WordList > switchVocabulary() {
   return { switchTable().list(),   unitTable().list(), tcamTable().list(),
            classIdsTable().list(), variants().list(),  tcamGroups().list() };
}

}  // namespace Scenario
