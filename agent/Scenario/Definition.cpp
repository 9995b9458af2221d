#include <Scenario/Definition.h>

namespace Scenario {

namespace {

using Json = nlohmann::ordered_json;

Json choiceOf( WordList const & list ) {
   Json texts = Json::array();
   for ( WordName const & word : list.words ) {
      texts.push_back( word.name );
   }
   return { { "description", list.place.description }, { "enum", texts } };
}

Json mappingOf( WordList const & list ) {
   Json mapping{ { "type", "object" }, { "description", list.place.description } };
   for ( WordName const & word : list.words ) {
      mapping[ "properties" ][ std::string( word.name ) ] = Json::parse( word.shape );
      if ( word.isRequired() ) {
         mapping[ "required" ].push_back( word.name );
      }
   }
   mapping.update( Json::parse( list.place.more ) );
   mapping[ "additionalProperties" ] = false;
   return mapping;
}

}  // namespace

Json definitionOf( WordList const & list ) {
   return list.isChoice ? choiceOf( list ) : mappingOf( list );
}

}  // namespace Scenario
