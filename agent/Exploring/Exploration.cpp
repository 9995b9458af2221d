#include <Exploring/Exploration.h>

#include <algorithm>
#include <map>
#include <set>
#include <utility>

#include <fmt/format.h>

#include <Exploring/Words.h>
#include <Scenario/Description.h>
#include <Scenario/Document.h>
#include <Scenario/File.h>
#include <Scenario/Whole.h>
#include <Steps/Reader.h>

namespace Exploring {

namespace {

namespace fs = std::filesystem;
using Scenario::documentIn;
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

// Problems quote an exploration. Another file's content is no business of theirs.
bool isExploration( fs::path const & file ) {
   YAML::Node const node = documentIn( Scenario::textIn( file ), file.string() ).node;
   return node.IsMap() && node[ "exploration" ];
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
   device_ = beginning( own.words );
   std::vector< Source > const sources = sourcesOf( own );
   std::vector< Scenario::AddedStep > added;
   addSteps( file, own.steps(), own.words.stepLines, false, added );
   for ( Source const & source : sources ) {
      addSteps( source.file, source.events(), source.words.eventLines, true, added );
      texts_ += source.text;
   }
   model_ = Steps::readScenarioText( textOf( device_ ), file, added );
   std::string const variant( Scenario::nameOf( model_.device.variant ) );
   device_.set( "steps", Scenario::yamlList( takenBy( variant, own.steps() ) ) );
   readEvents( sources, variant );
   firstEvent_ = model_.steps.size() - events_.size();
   readExchanges( sources );
}

// The files that name events, the own one last.
std::vector< Exploration::Source > Exploration::sourcesOf( Source const & own ) {
   Words const & words = own.words;
   if ( words.eventsOf.empty() ) {
      return { own };
   }
   fs::path const file = ( own.file.parent_path() / words.eventsOf ).lexically_normal();
   auto const refuseIt = [ & ]( std::string const & why ) {
      refuse( own.file, words.eventsOfLine, "events-of is '" + words.eventsOf + "', which " + why );
   };
   std::error_code error;
   if ( !fs::is_regular_file( file, error ) ) {
      refuseIt( "is no file; the file of an exploration is expected, relative to this one" );
   }
   if ( !isExploration( file ) ) {
      refuseIt( "has no word 'exploration', so it is none; name the file of an exploration" );
   }
   Source const other( file );
   if ( !other.words.eventsOf.empty() ) {
      refuseIt( "takes events of another exploration itself; name that one" );
   }
   return { other, own };
}

void Exploration::readEvents( std::vector< Source > const & sources, std::string const & variant ) {
   std::set< std::string > known;
   for ( Source const & source : sources ) {
      for ( Yaml const & event : takenBy( variant, source.events() ) ) {
         if ( !known.insert( exchangedText( event, {} ) ).second ) {
            refuse( source.file, 1,
                    "event '" + lineOf( event ) + "' is there twice; leave one out" );
         }
         events_.push_back( { lineOf( event ), event, source.file.parent_path() } );
      }
   }
   if ( events_.empty() || events_.size() > kMostEvents ) {
      refuse(
         file_, 1,
         fmt::format( "an exploration has from 1 to {} events for its variant, {}; give them as "
                      "'events', or by 'events-of'",
                      kMostEvents, variant ) );
   }
}

// An exchange is one of events, and leaves the switch as it is. A group that claims too much is
// named by its own file; then only groups with words in common can still be wrong.
void Exploration::readExchanges( std::vector< Source > const & sources ) {
   std::map< std::string, U16 > numbers;
   for ( U16 number = 0; number < events(); ++number ) {
      numbers[ exchangedText( events_[ number ].step, {} ) ] = number;
   }
   std::vector< Alike > all;
   for ( Source const & source : sources ) {
      for ( Alike const & group : source.words.alike ) {
         for ( WordExchange const & words : exchangesOf( { group } ) ) {
            check( words, numbers, source );
         }
         all.push_back( group );
      }
   }
   for ( WordExchange const & words : exchangesOf( all ) ) {
      check( words, numbers, sources.back() );
      Exchange & exchange = exchanges_.emplace_back();
      for ( Event const & event : events_ ) {
         exchange.push_back( numbers.at( exchangedText( event.step, words ) ) );
      }
   }
}

void Exploration::check( WordExchange const & words, std::map< std::string, U16 > const & numbers,
                         Source const & source ) const {
   Scenario::Whole const whole( file_, textOf( device_ ) );
   Yaml device = whole.document( file_, whole.steps() );
   device.remove( "description" );
   if ( exchangedText( device, words ) != exchangedText( device, {} ) ) {
      auto const [ word, other ] =
         *std::find_if( words.begin(), words.end(),
                        []( auto const & pair ) { return pair.first != pair.second; } );
      refuse(
         source.file, source.words.alikeLine,
         fmt::format( "the switch is another one when {} takes the place of {}; leave them out, "
                      "or name all that belongs to each",
                      other, word ) );
   }
   for ( std::size_t n = 0; n < events_.size(); ++n ) {
      if ( !numbers.contains( exchangedText( events_[ n ].step, words ) ) ) {
         refuse(
            source.file, source.words.alikeLine,
            fmt::format( "event {}, '{}', becomes no other event when words that are alike are "
                         "exchanged; add that event, or leave the words out",
                         n + 1, events_[ n ].text ) );
      }
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
   Scenario::Whole whole( file_, textOf( device_ ) );
   for ( U16 const event : sequence ) {
      whole.add( textOf( events_[ event ].step ), events_[ event ].folder );
   }
   std::vector< Scenario::PlacedStep > const further(
      whole.steps().begin() + static_cast< std::ptrdiff_t >( whole.baseSteps() ),
      whole.steps().end() );
   return textOf( basedOn( whole, place, listOf( place, further ) ) );
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
