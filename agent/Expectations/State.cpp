#include <Expectations/State.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Expectations/Evidence.h>
#include <Quelm/Error.h>
#include <Scenario/Shape.h>

namespace Expectations {

namespace {

namespace Shape = Scenario::Shape;

// The words of one expectation that the scenario has given.
struct StateWords {
   Scenario::AttributeAt at;
   std::vector< std::shared_ptr< Expected const > > asked;
};

void readEquals( Reading & reading, Value const & value, StateWords & words ) {
   words.asked.push_back(
      std::make_shared< AttributeEquals >( words.at, stringOf( reading, value ).value_or( "" ) ) );
}

template< bool isPresent >
void readPresence( Reading & reading, Value const & value, StateWords & words ) {
   Scenario::AttributeAt at = words.at;
   at.key = stringOf( reading, value ).value_or( "" );
   if ( !words.at.key.empty() ) {
      reading.problem( value.line, "'key' says the same as '" + value.name + "'; leave 'key' out" );
   }
   words.asked.push_back( std::make_shared< AttributeHas >( std::move( at ), isPresent ) );
}

constexpr std::string_view kOneQuestion = R"({
   "oneOf": [
      { "required": [ "equals" ] }, { "required": [ "has" ] }, { "required": [ "lacks" ] }
   ],
   "dependencies": {
      "has": { "not": { "required": [ "key" ] } }, "lacks": { "not": { "required": [ "key" ] } }
   }
})";

Scenario::Table< StateWords > const & stateTable() {
   static Scenario::Table< StateWords > const table = Scenario::attributeTable< StateWords >(
      { "state", "One attribute of one entity: its value, or a key that it has or lacks.",
        kOneQuestion },
      { { { "equals", "",
            Shape::of( "text",
                       "The value in its text form; of a reference, the type and identity of its "
                       "entity, or 'none'." ) },
          readEquals },
        { { "has", "", Shape::of( "text", "A key that the attribute has." ) },
          readPresence< true > },
        { { "lacks", "", Shape::of( "text", "A key that the attribute lacks." ) },
          readPresence< false > } } );
   return table;
}

// Calls `look` with the attribute of an entity that exists.
template< typename Look >
Finding lookAt( Scenario::AttributeAt const & at, Evidence const & evidence, Look const & look ) {
   Quelm::Ptr< Kiv::Entity > entity;
   try {
      entity = evidence.finder.entity( at.entity );
   } catch ( Quelm::AccessError const & error ) {
      return { false, error.what() };
   }
   return look( *entity, StateDatabase::attributeOf( *entity, at.attribute ) );
}

// "it has Ethernet1, Ethernet2 and 7 more".
std::string keysText( std::vector< std::string > keys ) {
   constexpr std::size_t kMost = 8;
   std::size_t const more = keys.size() > kMost ? keys.size() - kMost : 0;
   keys.resize( keys.size() - more );
   return keys.empty() ? "it is empty"
                       : fmt::format( "it has {}{}", fmt::join( keys, ", " ),
                                      more == 0 ? "" : fmt::format( " and {} more", more ) );
}

}  // namespace

std::shared_ptr< Expected const > readState( Reading & reading, Value const & value ) {
   StateWords words;
   readMapping( reading, value, stateTable(), words );
   if ( words.asked.size() == 1 ) {
      return words.asked.front();
   }
   if ( value.node.IsMap() && !hasStrangers( value, stateTable().list() ) ) {
      reading.problem( value.line, "state has " + std::to_string( words.asked.size() ) +
                                      " of the words 'equals', 'has' and 'lacks'; give one" );
   }
   return nullptr;
}

std::vector< WordList > stateVocabulary() {
   return { stateTable().list() };
}

std::string AttributeEquals::description() const {
   return textOf( at ) + " equals " + value;
}

Finding AttributeEquals::check( Evidence const & evidence ) const {
   return lookAt( at, evidence, [ & ]( Kiv::Entity & entity, Kiv::Attribute const & attribute ) {
      if ( attribute.isKeyed() && !attribute.has( entity, at.key ) ) {
         return Finding{ false, fmt::format( "there is no key {}", at.key ) };
      }
      std::string const text = attribute.text( entity, at.key );
      return Finding{ text == value, fmt::format( "it is {}", text ) };
   } );
}

std::string AttributeHas::description() const {
   return fmt::format( "{} {} {} {}", at.entity.stringValue(), at.attribute,
                       isPresent ? "has" : "lacks", at.key );
}

Finding AttributeHas::check( Evidence const & evidence ) const {
   return lookAt( at, evidence, [ & ]( Kiv::Entity & entity, Kiv::Attribute const & attribute ) {
      bool const isThere = attribute.has( entity, at.key );
      return Finding{ isThere == isPresent,
                      isThere ? "it has " + at.key
                              : fmt::format( "it lacks {}; {}", at.key,
                                             keysText( attribute.keys( entity ) ) ) };
   } );
}

}  // namespace Expectations
