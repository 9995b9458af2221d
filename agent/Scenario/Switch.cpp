#include <Audit/Variant.h>
#include <Scenario/Parts.h>
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
      "unit",
      { { { "module", "module: 1" },
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
   for ( auto const & [ number, about ] : keyedOf( reading, value, unitIn ) ) {
      UnitWords words;
      readMapping( reading, { about.node, about.line, "unit " + about.name }, unitTable(), words );
      SwitchUnit const unit{ number, static_cast< U16 >( words.module.value_or( 0 ) ) };
      reading.unitIs( unit );
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

// A group's entries per unit, or `none` where the switch has no such group.
template< std::optional< U32 > Tcam::*group >
void readGroup( Reading & reading, Value const & value, Tcam & tcam ) {
   bool const isNone = value.node.IsScalar() && value.node.Scalar() == "none";
   tcam.*group =
      isNone ? std::nullopt : numberOf( reading, value, 0, Tcam::kMostEntries, ", or none" );
}

Table< Tcam > const & tcamTable() {
   static Table< Tcam > const table{ "tcam",
                                     { { { "ingress", "" }, readGroup< &Tcam::ingress > },
                                       { { "egress", "" }, readGroup< &Tcam::egress > } } };
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

void readClassIdDelay( Reading & reading, Value const & value, ClassIds & classIds ) {
   constexpr U32 kLongest = 1'000'000;
   classIds.delay = numberOf( reading, value, 0, kLongest ).value_or( 0 );
}

Table< ClassIds > const & classIdsTable() {
   static Table< ClassIds > const table{ "class-ids",
                                         { { { "first", "" }, readClassIdEnd< &ClassIds::first > },
                                           { { "last", "" }, readClassIdEnd< &ClassIds::last > },
                                           { { "delay", "" }, readClassIdDelay } } };
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
   static Table< Model > const table{ "switch",
                                      { { { "name", "name: leaf1" }, readName },
                                        { { "slice", "" }, readSlice },
                                        { { "variant", "variant: egress-mask" }, readVariant },
                                        { { "units", "units: { 0: { module: 1 } }" }, readUnits },
                                        { { "tcam", "" }, readTcam },
                                        { { "class-ids", "" }, readClassIds },
                                        { { "l3-multicast-exempt", "" }, readL3MulticastExempt },
                                        { { "interfaces", "" }, readSwitchInterfaces },
                                        { { "port-channels", "" }, readSwitchPortChannels } } };
   return table;
}

}  // namespace

Choices< Variant > const & variants() {
   static Choices< Variant > const choices = [] {
      Choices< Variant > all{ "variant", {} };
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
