#include <Steps/Reader.h>

#include <nlohmann/json.hpp>

#include <Expectations/Table.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Scenario/Vocabulary.h>
#include <Steps/ExpectedStop.h>
#include <Steps/Table.h>

namespace Steps {

namespace {

constexpr std::string_view kOnlyOn = "only-on";

std::string oneOfTheRows() {
   nlohmann::ordered_json oneOf = nlohmann::ordered_json::array();
   for ( Row const & row : table() ) {
      oneOf.push_back( { { "required", { row.name } } } );
   }
   return nlohmann::ordered_json{ { "oneOf", oneOf } }.dump();
}

// A word for each row of the table, and one more that can stand beside any of them.
WordList madeStepWords() {
   static std::string const oneOf = oneOfTheRows();
   WordList list{ { "step", "One step does one thing.", oneOf }, {} };
   for ( Row const & row : table() ) {
      list.words.push_back( { row.name, "", row.shape } );
   }
   list.words.push_back(
      { kOnlyOn, "", Scenario::Shape::of( "variant", "Takes the step on this variant only." ) } );
   return list;
}

WordList const & stepWords() {
   static WordList const list = madeStepWords();
   return list;
}

// One word names the action; 'only-on' may stand beside it.
void checkWords( Reading & reading, Value const & step ) {
   if ( !step.node.IsMap() || hasStrangers( step, stepWords() ) ) {
      return;
   }
   std::size_t const words = step.node.size() - ( step.node[ std::string( kOnlyOn ) ] ? 1 : 0 );
   if ( words != 1 ) {
      reading.problem( step.line, "a step does one thing, but this one does " +
                                     std::to_string( words ) + "; write a step for each" );
   }
}

// The words that change the published state: those that a turn can hold, and the turn itself.
bool changesState( Row const & row ) {
   return row.readTurnPart || row.name == "turn";
}

Scenario::StepForVariant stepIn( Reading & reading, Value const & element ) {
   std::size_t const before = reading.problemsSoFar();
   Scenario::StepForVariant step{ { nullptr, element.line }, {} };
   bool isOfState = false;
   for ( auto const & [ word, about ] : wordValuesInOrderOf( reading, element, stepWords() ) ) {
      if ( word < table().size() ) {
         Scenario::WordWatch const watch( reading, stepWords().place, stepWords().words[ word ] );
         step.step.action = table()[ word ].read( reading, about );
         isOfState = isOfState || changesState( table()[ word ] );
      } else {
         step.onlyOn = choiceOf( reading, about, Scenario::variants() );
      }
   }
   checkWords( reading, element );
   bool const isFaultless = reading.problemsSoFar() == before;
   step.isEffectKnown = isFaultless || ( step.step.action && !isOfState );
   return step;
}

void readSteps( Reading & reading, Value const & value,
                std::vector< Scenario::StepForVariant > & steps ) {
   if ( !value.node.IsSequence() ) {
      reading.doubts().isLost( "scenario/steps" );
   }
   for ( Value const & element : listOf( reading, value ) ) {
      steps.push_back( stepIn( reading, element ) );
   }
}

// Adds what is wrong with the place of an expected stop. Where another mistake may hide the step
// that stops the process, the check is left out.
Scenario::Findings withExpectedStop( Scenario::Findings findings ) {
   try {
      checkExpectedStop( findings.model );
   } catch ( Scenario::ReadError const & error ) {
      if ( findings.problems.empty() ) {
         findings.problems = error.problems();
      } else {
         findings.leftOut.emplace_back( "whether one step follows an expected stop" );
      }
   }
   return findings;
}

}  // namespace

Scenario::Model readScenario( std::filesystem::path const & file,
                              std::vector< Scenario::AddedStep > const & added ) {
   Scenario::Model scenario = Scenario::read( file, readSteps, added );
   checkExpectedStop( scenario );
   return scenario;
}

Scenario::Findings examineScenario( std::filesystem::path const & file ) {
   return withExpectedStop( Scenario::examine( file, readSteps ) );
}

Scenario::Findings examineScenarioText( std::string const & text,
                                        std::filesystem::path const & file ) {
   return withExpectedStop( Scenario::examineText( text, file, readSteps ) );
}

Scenario::Model readScenarioText( std::string const & text, std::filesystem::path const & file,
                                  std::vector< Scenario::AddedStep > const & added,
                                  std::optional< std::size_t > own, Scenario::Root const & root ) {
   Scenario::Model scenario = Scenario::readText( text, file, readSteps, added, own, root );
   // A part of the steps can end between an expected stop and its step.
   if ( !own ) {
      checkExpectedStop( scenario );
   }
   return scenario;
}

std::vector< WordList > vocabulary() {
   std::vector< WordList > all = Scenario::vocabulary();
   auto const add = [ &all ]( std::vector< WordList > const & more ) {
      all.insert( all.end(), more.begin(), more.end() );
   };
   add( { stepWords() } );
   for ( Row const & row : table() ) {
      add( row.vocabulary() );
   }
   add( Expectations::vocabulary() );
   return all;
}

}  // namespace Steps
