#include <Exploring/Words.h>

#include <Exploring/Exploration.h>
#include <Scenario/Document.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>

namespace Exploring {

namespace {

namespace Shape = Scenario::Shape;
using Scenario::Reading;
using Scenario::Value;

template< std::string Words::*member >
void readText( Reading & reading, Value const & value, Words & words ) {
   words.*member = stringOf( reading, value ).value_or( "" );
}

void readDescription( Reading & reading, Value const & value, Words & ) {
   stringOf( reading, value );
}

void readVariant( Reading & reading, Value const & value, Words & words ) {
   if ( choiceOf( reading, value, Scenario::variants() ) ) {
      words.variant = value.node.Scalar();
   }
}

void readLength( Reading & reading, Value const & value, Words & words ) {
   words.length =
      numberOf( reading, value, 1, static_cast< U32 >( Exploration::kLongest ) ).value_or( 0 );
}

// One thing: its names in a list, or its only name.
Names namesIn( Reading & reading, Value const & value ) {
   Names names;
   for ( Value const & name :
         value.node.IsSequence() ? listOf( reading, value ) : std::vector< Value >{ value } ) {
      names.push_back( stringOf( reading, name ).value_or( "" ) );
   }
   return names;
}

void readAlike( Reading & reading, Value const & value, Words & words ) {
   words.alikeLine = value.line;
   for ( Value const & group : listOf( reading, value ) ) {
      Alike alike;
      for ( Value const & thing : listOf( reading, group ) ) {
         alike.push_back( namesIn( reading, thing ) );
         if ( alike.back().size() != alike.front().size() ) {
            reading.problem( thing.line, "things that are alike have as many names each" );
         }
      }
      words.alike.push_back( std::move( alike ) );
   }
}

// Of the elements of a list. The reader of scenarios takes the steps themselves.
template< std::vector< int > Words::*lines >
void readLines( Reading & reading, Value const & value, Words & words ) {
   for ( Value const & step : listOf( reading, value ) ) {
      ( words.*lines ).push_back( step.line );
   }
}

void readEventsOf( Reading & reading, Value const & value, Words & words ) {
   words.eventsOf = stringOf( reading, value ).value_or( "" );
   words.eventsOfLine = value.line;
}

Scenario::Table< Words > const & table() {
   static Scenario::Table< Words > const table{
      { "exploration", "A switch, and the events that may happen to it in any order." },
      { { { "exploration", "exploration: two-vteps", Shape::of( "text", "Its name." ) },
          readText< &Words::name > },
        { { "description", "", Shape::of( "text", "The purpose of the exploration." ) },
          readDescription },
        { { "based-on", "based-on: ../start-up/scenario.yaml",
            Shape::of( "text",
                       "The scenario that describes the switch, and whose steps come first; "
                       "relative to this file." ) },
          readText< &Words::base > },
        { { "variant", "", Shape::of( "variant" ) }, readVariant },
        { { "length", "length: 4", Shape::of( "text", "The events of the longest sequence." ) },
          readLength },
        { { "alike", "", Shape::of( "text", "Words that can be exchanged for one another." ) },
          readAlike },
        { { "events-of", "",
            Shape::of(
               "text",
               "An exploration whose words that are alike, and events, come first; relative "
               "to this file." ) },
          readEventsOf },
        { { "steps", "",
            Shape::listOf( Shape::of( "step" ), "The steps behind those of the scenario." ) },
          readLines< &Words::stepLines > },
        { { "events", "", Shape::listOf( Shape::of( "step" ), "The events." ) },
          readLines< &Words::eventLines > } }
   };
   return table;
}

}  // namespace

Words wordsIn( std::string const & text, std::filesystem::path const & file ) {
   Reading reading( file.string(), text );
   Words words;
   readMapping( reading, Scenario::documentIn( text, file.string() ), table(), words );
   if ( reading.problemsSoFar() != 0 ) {
      throw Scenario::ReadError( reading.problems() );
   }
   return words;
}

}  // namespace Exploring
