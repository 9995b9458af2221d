#include <Steps/Turn.h>

#include <algorithm>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Scenario/Shape.h>
#include <Scenario/Values.h>
#include <Steps/Context.h>
#include <Steps/Table.h>

namespace Steps {

namespace {

// The steps that a turn can hold.
std::vector< Row > const & rows() {
   static std::vector< Row > const those = [] {
      std::vector< Row > all = table();
      std::erase_if( all, []( Row const & row ) { return !row.readTurnPart; } );
      return all;
   }();
   return those;
}

WordList turnWords() {
   WordList list{ { "turn", "A change that is made in one activity turn with others.",
                    R"({"minProperties": 1, "maxProperties": 1})" },
                  {} };
   for ( Row const & row : rows() ) {
      list.words.push_back( { row.name, "", row.shape } );
   }
   return list;
}

}  // namespace

std::string Turn::shape() {
   return Scenario::Shape::listOf( Scenario::Shape::of( "turn" ),
                                   "Several changes in one activity turn, in the order written.",
                                   R"({"minItems": 1})" );
}

std::vector< WordList > Turn::vocabulary() {
   return { turnWords() };
}

void Turn::read( Reading & reading, Value const & value ) {
   std::vector< Value > const elements = listOf( reading, value );
   if ( value.node.IsSequence() && elements.empty() ) {
      reading.problem( value.line, "turn is empty; give one change at least" );
   }
   for ( Value const & element : elements ) {
      for ( auto const & [ word, about ] : wordValuesInOrderOf( reading, element, turnWords() ) ) {
         parts.push_back( { rows()[ word ].readTurnPart( reading, about ), element.line } );
      }
      if ( element.node.IsMap() && element.node.size() != 1 ) {
         reading.problem( element.line,
                          "an element of turn changes one thing, but this one changes " +
                             std::to_string( element.node.size() ) +
                             "; write an element for each" );
      }
   }
}

std::string Turn::description() const {
   std::vector< std::string > texts;
   for ( PlacedPart const & one : parts ) {
      texts.push_back( one.part->description() );
   }
   return fmt::format( "in one turn: {}", fmt::join( texts, "; " ) );
}

Scenario::AfterRestart Turn::afterRestart() const {
   using Scenario::AfterRestart;
   bool const isRepeated = std::all_of( parts.begin(), parts.end(), []( PlacedPart const & one ) {
      return one.part->afterRestart() == AfterRestart::repeated;
   } );
   return isRepeated ? AfterRestart::repeated : AfterRestart::lasts;
}

void Turn::follow( Scenario::Course & course ) const {
   for ( PlacedPart const & one : parts ) {
      one.part->follow( course );
   }
}

void Turn::queue( Context const & context, int line ) const {
   context.turnNew( line, [ this, &context ] {
      for ( PlacedPart const & one : parts ) {
         context.at( one.line, [ & ] { one.part->change( context, one.line ); } );
      }
   } );
}

}  // namespace Steps
