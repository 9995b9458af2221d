#include <Scenario/Definition.h>

namespace Scenario {

namespace {

using Json = nlohmann::ordered_json;

Json choiceOf( WordList const & list ) {
   Json texts = Json::array();
   for ( WordName const & word : list.words ) {
      texts.push_back( word.name );
   }
   return { { "enum", texts } };
}

Json mappingOf( WordList const & list ) {
   Json mapping = Json::parse( list.place.more );
   mapping[ "type" ] = "object";
   mapping[ "additionalProperties" ] = false;
   for ( WordName const & word : list.words ) {
      mapping[ "properties" ][ std::string( word.name ) ] = Json::parse( word.shape );
      if ( word.isRequired() ) {
         mapping[ "required" ].push_back( word.name );
      }
   }
   return mapping;
}

}  // namespace

Json definitionOf( WordList const & list ) {
   Json definition = list.isChoice ? choiceOf( list ) : mappingOf( list );
   definition[ "description" ] = list.place.description;
   return definition;
}

}  // namespace Scenario
