#include <Exploring/Exploration.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include <fmt/format.h>

#include <Exploring/Exchanges.h>
#include <Scenario/Document.h>
#include <Scenario/File.h>
#include <Scenario/Parts.h>
#include <Scenario/Shape.h>
#include <Scenario/Whole.h>
#include <Steps/Reader.h>

namespace Exploring {

namespace {

namespace fs = std::filesystem;
namespace Shape = Scenario::Shape;
using Scenario::Reading;
using Scenario::Value;
using Scenario::Yaml;

// --- The words

struct Words {
   std::string name;
   std::string base;
   std::string variant;
   std::size_t length = 0;
   std::vector< Alike > alike;
   int alikeLine = 1;
   std::vector< int > eventLines;
};

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

void readEvents( Reading & reading, Value const & value, Words & words ) {
   for ( Value const & event : listOf( reading, value ) ) {
      words.eventLines.push_back( event.line );
   }
   if ( words.eventLines.empty() || words.eventLines.size() > Exploration::kMostEvents ) {
      reading.problem( value.line, fmt::format( "an exploration has from 1 to {} events",
                                                Exploration::kMostEvents ) );
   }
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
        { { "events", "events: [ ready: subagents::l2Ready ]",
            Shape::listOf( Shape::of( "step" ), "The events." ) },
          readEvents } }
   };
   return table;
}

[[noreturn]] void refuse( fs::path const & file, int line, std::string const & why ) {
   throw Scenario::ReadError( { { file.string(), line, why } } );
}

Words wordsOf( fs::path const & file, std::string const & text ) {
   Reading reading( file.string(), text );
   Words words;
   readMapping( reading, Scenario::documentIn( text, file.string() ), table(), words );
   if ( reading.problemsSoFar() != 0 ) {
      throw Scenario::ReadError( reading.problems() );
   }
   return words;
}

// The scenario that the exploration begins with.
Yaml beginning( std::string const & name, std::string const & base, std::string const & variant ) {
   using Scenario::yamlText;
   Yaml document = Scenario::yamlMapping(
      { { "scenario", yamlText( name ) }, { "based-on", yamlText( base ) } } );
   if ( !variant.empty() ) {
      document.set( "variant", yamlText( variant ) );
   }
   return document;
}

std::string inLineText( Yaml value ) {
   std::string const line = textOf( inLine( std::move( value ) ) );
   return line.substr( 0, line.size() - 1 );  // less its line end
}

// A step of a single word needs no brackets around it.
std::string lineOf( Yaml const & step ) {
   if ( step.parts.size() != 1 ) {
      return inLineText( step );
   }
   Yaml value = step.parts.front();
   std::string const word = std::exchange( value.key, "" );
   return word + ": " + inLineText( std::move( value ) );
}

// The parts of a switch that an exchange must leave as they are.
Yaml partsOf( Scenario::Whole const & whole, fs::path const & file ) {
   Yaml document = whole.document( file, whole.steps() );
   document.remove( "description" );
   return document;
}

}  // namespace

Exploration::Exploration( fs::path const & file ) : file_( file ) {
   std::string const text = Scenario::textIn( file );
   Words const words = wordsOf( file, text );
   name_ = words.name;
   base_ = words.base;
   variant_ = words.variant;
   length_ = words.length;
   Yaml const document = Scenario::yamlIn( text );
   std::vector< Yaml > const & events = document.find( "events" )->parts;
   std::vector< Scenario::AddedStep > added;
   for ( std::size_t n = 0; n < events.size(); ++n ) {
      std::string const line = lineOf( events[ n ] );
      std::string const above( static_cast< std::size_t >( words.eventLines[ n ] - 1 ), '\n' );
      added.push_back( { file.string(), above + line, {}, true } );
      texts_.push_back( line );
   }
   model_ = Steps::readScenarioText( textOf( beginning( name_, base_, variant_ ) ), file, added );
   if ( model_.steps.size() != model_.ownSteps + texts_.size() ) {
      refuse( file, words.eventLines.front(),
              "an event is for both variants; leave out 'only-on'" );
   }
   readExchanges( words.alike, words.alikeLine, events );
}

// An exchange is one of events, and leaves the switch as it is.
void Exploration::readExchanges( std::vector< Alike > const & groups, int line,
                                 std::vector< Yaml > const & events ) {
   std::map< std::string, U16 > numbers;
   for ( std::size_t n = 0; n < events.size(); ++n ) {
      numbers[ exchangedText( events[ n ], {} ) ] = static_cast< U16 >( n );
   }
   Yaml const device = partsOf( { file_, textOf( beginning( name_, base_, variant_ ) ) }, file_ );
   for ( WordExchange const & words : exchangesOf( groups ) ) {
      if ( exchangedText( device, words ) != exchangedText( device, {} ) ) {
         refuse( file_, line,
                 fmt::format( "the switch is another one when {} takes the place of {}; leave them "
                              "out, or name all that belongs to each",
                              words.begin()->second, words.begin()->first ) );
      }
      Exchange exchange;
      for ( std::size_t n = 0; n < events.size(); ++n ) {
         auto const found = numbers.find( exchangedText( events[ n ], words ) );
         if ( found == numbers.end() ) {
            refuse( file_, line,
                    fmt::format( "event {}, '{}', becomes no other event when words that are alike "
                                 "are exchanged; add that event, or leave the words out",
                                 n + 1, texts_[ n ] ) );
         }
         exchange.push_back( found->second );
      }
      exchanges_.push_back( std::move( exchange ) );
   }
}

namespace {

Sequence exchanged( Sequence const & sequence, std::vector< U16 > const & exchange ) {
   Sequence other;
   for ( U16 const event : sequence ) {
      other.push_back( exchange[ event ] );
   }
   return other;
}

}  // namespace

bool Exploration::isCanonical( Sequence const & sequence ) const {
   return std::none_of( exchanges_.begin(), exchanges_.end(), [ & ]( Exchange const & exchange ) {
      return exchanged( sequence, exchange ) < sequence;
   } );
}

std::size_t Exploration::weight( Sequence const & sequence ) const {
   std::set< Sequence > all{ sequence };
   for ( Exchange const & exchange : exchanges_ ) {
      all.insert( exchanged( sequence, exchange ) );
   }
   return all.size();
}

std::string Exploration::scenarioText( Sequence const & sequence, fs::path const & place ) const {
   Scenario::Whole const whole( file_, textOf( beginning( name_, base_, variant_ ) ) );
   Yaml document =
      beginning( Scenario::nameFor( place ), Scenario::pathFrom( place, whole.base() ), variant_ );
   Yaml steps = Scenario::yamlList();
   for ( U16 const event : sequence ) {
      steps.add( Scenario::yamlIn( texts_[ event ] ) );
   }
   document.set( "steps", std::move( steps ) );
   return textOf( document );
}

// FNV-1a, over the texts one after the other.
U64 Exploration::fingerprint() const {
   constexpr U64 kStart = 0xcbf29ce484222325;
   constexpr U64 kPrime = 0x100000001b3;
   U64 number = kStart;
   auto const add = [ & ]( std::string const & text ) {
      for ( char const character : text ) {
         number = ( number ^ static_cast< U8 >( character ) ) * kPrime;
      }
   };
   add( Scenario::textIn( file_ ) );
   for ( Scenario::SourceText const & source : model_.texts ) {
      add( source.text );
   }
   return number;
}

}  // namespace Exploring
