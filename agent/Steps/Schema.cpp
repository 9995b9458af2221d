#include <Steps/Schema.h>

#include <Scenario/Definition.h>
#include <Scenario/Forms.h>
#include <Steps/Reader.h>

namespace Steps {

nlohmann::ordered_json schema() {
   auto schema = nlohmann::ordered_json::parse( R"({
      "$schema": "http://json-schema.org/draft-07/schema#",
      "title": "Scenario of the off-switch agent",
      "description": "A switch, what other agents publish on it, and the steps of a story. docs/scenarios.md describes the language.",
      "type": "object",
      "if": { "required": [ "based-on" ] },
      "then": { "$ref": "#/definitions/derived-scenario" },
      "else": { "$ref": "#/definitions/scenario" }
   })" );
   auto & definitions = schema[ "definitions" ];
   for ( Scenario::WordList const & list : vocabulary() ) {
      definitions[ std::string( list.place.name ) ] = Scenario::definitionOf( list );
   }
   definitions.update( Scenario::forms() );
   return schema;
}

}  // namespace Steps
