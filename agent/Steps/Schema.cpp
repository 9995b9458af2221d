#include <Steps/Schema.h>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <Scenario/Definition.h>
#include <Scenario/Forms.h>
#include <Steps/Reader.h>

namespace Steps {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kColumns = 100;
constexpr std::size_t kIndent = 3;

// The value in one line: { "type": "integer", "minimum": 0 }
std::string inOneLine( Json const & value ) {
   if ( !value.is_structured() || value.empty() ) {
      return value.dump();
   }
   std::vector< std::string > members;
   for ( auto const & [ name, member ] : value.items() ) {
      members.push_back( ( value.is_object() ? Json( name ).dump() + ": " : "" ) +
                         inOneLine( member ) );
   }
   std::string const joined = fmt::format( "{}", fmt::join( members, ", " ) );
   return value.is_object() ? fmt::format( "{{ {} }}", joined ) : fmt::format( "[ {} ]", joined );
}

// The value behind `before`, the text that its line begins with.
std::string laidOut( Json const & value, std::string const & before, std::size_t depth ) {
   std::string const line = inOneLine( value );
   std::size_t const begin = depth * kIndent + before.size();
   if ( !value.is_structured() || begin + line.size() < kColumns ) {
      return before + line;
   }
   std::string const indent( ( depth + 1 ) * kIndent, ' ' );
   std::vector< std::string > members;
   for ( auto const & [ name, member ] : value.items() ) {
      members.push_back( indent + laidOut( member,
                                           value.is_object() ? Json( name ).dump() + ": " : "",
                                           depth + 1 ) );
   }
   return fmt::format( "{}{}\n{}\n{}{}", before, value.is_object() ? '{' : '[',
                       fmt::join( members, ",\n" ), std::string( depth * kIndent, ' ' ),
                       value.is_object() ? '}' : ']' );
}

}  // namespace

Json schema() {
   auto schema = Json::parse( R"({
      "$schema": "http://json-schema.org/draft-07/schema#",
      "$comment": "",
      "title": "Scenario of the off-switch agent",
      "description": "A switch, what other agents publish on it, and the steps of a story. docs/scenarios.md describes the language.",
      "type": "object",
      "if": { "required": [ "based-on" ] },
      "then": { "$ref": "#/definitions/derived-scenario" },
      "else": { "$ref": "#/definitions/scenario" }
   })" );
   schema[ "$comment" ] = fmt::format( "scenario language {}", kLanguageVersion );
   auto & definitions = schema[ "definitions" ];
   for ( Scenario::WordList const & list : vocabulary() ) {
      definitions[ std::string( list.place.name ) ] = Scenario::definitionOf( list );
   }
   definitions.update( Scenario::forms() );
   return schema;
}

std::string schemaText() {
   return laidOut( schema(), "", 0 ) + '\n';
}

}  // namespace Steps
