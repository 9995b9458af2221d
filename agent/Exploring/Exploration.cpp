#include <Exploring/Exploration.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include <fmt/format.h>

#include <Exploring/Words.h>
#include <Scenario/Description.h>
#include <Scenario/File.h>
#include <Scenario/Whole.h>
#include <Steps/Reader.h>

namespace Exploring {

namespace {

namespace fs = std::filesystem;
using Scenario::Yaml;

[[noreturn]] void refuse( fs::path const & file, int line, std::string const & why ) {
   throw Scenario::ReadError( { { file.string(), line, why } } );
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

// The list of that name, element by element; nothing for one that is not there.
std::vector< Yaml > elementsOf( Yaml const & document, std::string const & name ) {
   Yaml const * const list = document.find( name );
   return list ? list->parts : std::vector< Yaml >();
}

// The steps as additions to a scenario, on their lines of the file.
void addSteps( fs::path const & file, std::vector< Yaml > const & steps,
               std::vector< int > const & lines, bool areChoices,
               std::vector< Scenario::AddedStep > & added ) {
   for ( std::size_t n = 0; n < steps.size(); ++n ) {
      std::string const above( static_cast< std::size_t >( lines[ n ] - 1 ), '\n' );
      added.push_back( { file.string(), above + lineOf( steps[ n ] ), {}, areChoices } );
   }
}

// Those that the variant takes, without the word 'only-on'.
std::vector< Yaml > takenBy( std::string const & variant, std::vector< Yaml > const & steps ) {
   std::vector< Yaml > taken;
   for ( Yaml step : steps ) {
      Yaml const * const onlyOn = step.find( "only-on" );
      if ( !onlyOn || onlyOn->text == variant ) {
         step.remove( "only-on" );
         taken.push_back( std::move( step ) );
      }
   }
   return taken;
}

// The scenario that the exploration begins with, less its own steps.
Yaml beginning( Words const & words ) {
   using Scenario::yamlText;
   Yaml document = Scenario::yamlMapping(
      { { "scenario", yamlText( words.name ) }, { "based-on", yamlText( words.base ) } } );
   if ( !words.variant.empty() ) {
      document.set( "variant", yamlText( words.variant ) );
   }
   return document;
}

}  // namespace

// A file with events: the exploration's own, or one whose events it takes.
struct Exploration::Source {
   fs::path file;
   std::string text;
   Words words;
   Yaml document;

   explicit Source( fs::path const & path )
         : file( path ),
           text( Scenario::textIn( path ) ),
           words( wordsIn( text, path ) ),
           document( Scenario::yamlIn( text ) ) {}

   std::vector< Yaml > steps() const { return elementsOf( document, "steps" ); }
   std::vector< Yaml > events() const { return elementsOf( document, "events" ); }
};

Exploration::Exploration( fs::path const & file ) : file_( file ) {
   Source const own( file );
   name_ = own.words.name;
   length_ = own.words.length;
   std::vector< Scenario::AddedStep > added;
   addSteps( file, own.steps(), own.words.stepLines, false, added );
   std::vector< Yaml > events;
   std::vector< Alike > alike;
   Place place{ file, 1 };
   for ( Source const & source : sourcesOf( own ) ) {
      auto const more = source.events();
      addSteps( source.file, more, source.words.eventLines, true, added );
      events.insert( events.end(), more.begin(), more.end() );
      alike.insert( alike.end(), source.words.alike.begin(), source.words.alike.end() );
      if ( !source.words.alike.empty() ) {
         place = { source.file, source.words.alikeLine };
      }
      texts_ += source.text;
   }
   if ( events.empty() || events.size() > kMostEvents ) {
      refuse( file, 1, fmt::format( "an exploration has from 1 to {} events", kMostEvents ) );
   }
   device_ = beginning( own.words );
   model_ = Steps::readScenarioText( textOf( device_ ), file, added );
   std::string const variant( Scenario::nameOf( model_.device.variant ) );
   events = takenBy( variant, events );
   device_.set( "steps", Scenario::yamlList( takenBy( variant, own.steps() ) ) );
   for ( Yaml const & event : events ) {
      events_.push_back( lineOf( event ) );
   }
   firstEvent_ = model_.steps.size() - events_.size();
   readExchanges( alike, place, events );
}

// The files that name events, the own one last.
std::vector< Exploration::Source > Exploration::sourcesOf( Source const & own ) {
   if ( own.words.eventsOf.empty() ) {
      return { own };
   }
   Source const other( ( own.file.parent_path() / own.words.eventsOf ).lexically_normal() );
   if ( !other.words.eventsOf.empty() ) {
      refuse( own.file, own.words.eventsOfLine,
              "events-of is '" + own.words.eventsOf +
                 "', which takes events of another exploration itself; name that one" );
   }
   return { other, own };
}

// An exchange is one of events, and leaves the switch as it is.
void Exploration::readExchanges( std::vector< Alike > const & groups, Place const & place,
                                 std::vector< Yaml > const & events ) {
   std::map< std::string, U16 > numbers;
   for ( std::size_t n = 0; n < events.size(); ++n ) {
      numbers[ exchangedText( events[ n ], {} ) ] = static_cast< U16 >( n );
   }
   Scenario::Whole const whole( file_, textOf( device_ ) );
   Yaml device = whole.document( file_, whole.steps() );
   device.remove( "description" );
   for ( WordExchange const & words : exchangesOf( groups ) ) {
      if ( exchangedText( device, words ) != exchangedText( device, {} ) ) {
         refuse( place.file, place.line,
                 fmt::format( "the switch is another one when {} takes the place of {}; leave them "
                              "out, or name all that belongs to each",
                              words.begin()->second, words.begin()->first ) );
      }
      Exchange exchange;
      for ( std::size_t n = 0; n < events.size(); ++n ) {
         auto const found = numbers.find( exchangedText( events[ n ], words ) );
         if ( found == numbers.end() ) {
            refuse( place.file, place.line,
                    fmt::format( "event {}, '{}', becomes no other event when words that are alike "
                                 "are exchanged; add that event, or leave the words out",
                                 n + 1, events_[ n ] ) );
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
   Scenario::Whole const whole( file_, textOf( device_ ) );
   Yaml document = device_;
   document.set( "scenario", Scenario::yamlText( Scenario::nameFor( place ) ) );
   document.set( "based-on", Scenario::yamlText( Scenario::pathFrom( place, whole.base() ) ) );
   for ( U16 const event : sequence ) {
      document.part( "steps" ).add( Scenario::yamlIn( events_[ event ] ) );
   }
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
   add( texts_ );
   for ( Scenario::SourceText const & source : model_.texts ) {
      add( source.text );
   }
   return number;
}

}  // namespace Exploring
