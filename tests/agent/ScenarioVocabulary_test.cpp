// The reader, the JSON Schema and the shipped scenarios know the same words.
#include <Steps/Reader.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <set>
#include <sstream>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <Scenario/Forms.h>
#include <Steps/Schema.h>

namespace {

namespace fs = std::filesystem;

using Json = nlohmann::json;
using WordSet = std::set< std::string >;

fs::path const kSource = VORNAL_SOURCE_DIR;

Json const & schema() {
   static Json const json = Steps::schema();
   return json;
}

std::string textOf( fs::path const & file ) {
   std::ostringstream text;
   text << std::ifstream( kSource / file ).rdbuf();
   return text.str();
}

// Calls `visit` with every object of the schema.
void forEachObject( Json const & json, std::function< void( Json const & ) > const & visit ) {
   if ( json.is_object() ) {
      visit( json );
   }
   if ( json.is_structured() ) {
      for ( Json const & part : json ) {
         forEachObject( part, visit );
      }
   }
}

TEST( ScenarioVocabulary, IsThatOfTheShippedSchema ) {
   EXPECT_EQ( textOf( "docs/scenario.schema.json" ), Steps::schemaText() )
      << "the schema has changed; write it anew: vornal schema > docs/scenario.schema.json";
}

TEST( ScenarioVocabulary, HasAPlaceOfItsOwnForEachMappingAndForm ) {
   WordSet places;
   auto const forms = Scenario::forms();
   for ( auto const & [ name, form ] : forms.items() ) {
      places.insert( name );
   }
   for ( Scenario::WordList const & list : Steps::vocabulary() ) {
      EXPECT_TRUE( places.emplace( list.place.name ).second )
         << list.place.name << " is there twice";
   }
}

TEST( ScenarioVocabulary, IsCompleteInTheSchemaToo ) {
   forEachObject( schema(), []( Json const & object ) {
      // Conditions have no type of their own.
      if ( object.value( "type", Json() ) == "object" && object.contains( "properties" ) ) {
         EXPECT_EQ( object.value( "additionalProperties", true ), false ) << object.dump();
      }
   } );
}

TEST( ScenarioVocabulary, RefersInTheSchemaToWhatThereIs ) {
   forEachObject( schema(), []( Json const & object ) {
      if ( object.contains( "$ref" ) && object.at( "$ref" ).is_string() ) {
         std::string const reference = object.at( "$ref" );
         EXPECT_TRUE( schema().contains( Json::json_pointer( reference.substr( 1 ) ) ) )
            << reference;
      }
   } );
}

std::string document() {
   return textOf( "docs/scenarios.md" );
}

// The YAML blocks of the document.
std::vector< std::string > examples() {
   std::string const open = "```yaml\n";
   std::string const text = document();
   std::vector< std::string > result;
   for ( auto at = text.find( open ); at != std::string::npos; at = text.find( open, at ) ) {
      at += open.size();
      result.push_back( text.substr( at, text.find( "```", at ) - at ) );
   }
   return result;
}

// A scenario of an example, which may be one, or a part of one, or steps.
std::string scenarioOf( std::string const & example ) {
   std::string const leaf =
      "scenario: s\n"
      "switch: { name: leaf1, variant: class-id, units: { 0: { module: 1 } },\n"
      "          interfaces: { Ethernet1: {}, Ethernet4: {} }, port-channels: { Port-Channel2: [] "
      "} }\n";
   if ( example.starts_with( "scenario:" ) ) {
      return example;
   }
   if ( example.starts_with( "switch:" ) ) {
      return "scenario: s\n" + example;
   }
   std::string const published =
      "- publish: { interfaces: { Ethernet1: { unit: 0, port: 1 } },\n"
      "             port-channels: { Port-Channel2: [ Ethernet4 ] },\n"
      "             segments: { Port-Channel2: [ 10.0.0.2 ] },\n"
      "             vteps: { 10.0.0.2: { virtual-port: 2 } },\n"
      "             tunnel-interfaces: { Vxlan1: { vrf-vni: { red: 50001 } } } }\n";
   std::string const forwarding =
      "forwarding: { vtep-addresses: [ 10.0.0.1, '2001:db8::1' ], underlay: [ Ethernet1 ],\n"
      "              vlans: { 20: 10020 }, access: { Port-Channel2: 20 } }\n";
   bool const isSteps = example.starts_with( "- " );
   return leaf +
          ( isSteps ? forwarding + "trace: { VornalEvpnSm: 5 }\nsteps:\n" + published : "" ) +
          example;
}

TEST( ScenarioVocabulary, IsShownInExamplesThatTheReaderTakes ) {
   for ( std::string const & example : examples() ) {
      try {
         Steps::readScenarioText( scenarioOf( example ),
                                  kSource / "scenarios/start-up/example.yaml" );
      } catch ( Scenario::ReadError const & error ) {
         ADD_FAILURE() << error.what() << "\n" << scenarioOf( example );
      }
   }
   EXPECT_GE( examples().size(), 10U );
}

TEST( ScenarioVocabulary, IsDescribedWordByWord ) {
   std::string const text = document();
   for ( Scenario::WordList const & list : Steps::vocabulary() ) {
      for ( Scenario::WordName const & word : list.words ) {
         EXPECT_NE( text.find( '`' + std::string( word.name ) + '`' ), std::string::npos )
            << "docs/scenarios.md says nothing of '" << word.name << "' of " << list.place.name;
      }
   }
}

TEST( ScenarioVocabulary, SufficesForEveryShippedScenario ) {
   int count = 0;
   for ( auto const & folder : fs::directory_iterator( kSource / "scenarios" ) ) {
      fs::path const file = folder.path() / "scenario.yaml";
      if ( fs::exists( file ) ) {
         EXPECT_NO_THROW( Steps::readScenario( file ) );
         EXPECT_TRUE( fs::exists( folder.path() / "README.md" ) ) << folder.path();
         EXPECT_EQ( Steps::readScenario( file ).name, folder.path().filename() );
         ++count;
      }
   }
   EXPECT_GE( count, 2 );
}

}  // namespace
