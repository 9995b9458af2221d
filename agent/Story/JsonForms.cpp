#include <Story/JsonForms.h>

namespace Story {

namespace {

using Json = nlohmann::ordered_json;

Json jsonOf( RuleValue const & value ) {
   return { { "data", value.data }, { "mask", Story::jsonOf( value.mask ) } };
}

// {"data": 4, "mask": 255}, {"ports": [3, 4]}, or one of the first form for each named part.
Json jsonOf( RuleField const & field ) {
   Json json = Json::object();
   for ( RuleValue const & value : field.values ) {
      if ( value.part.empty() ) {
         json.update( jsonOf( value ) );
      } else {
         json[ value.part ] = jsonOf( value );
      }
   }
   if ( field.ports ) {
      json[ "ports" ] = *field.ports;
   }
   return json;
}

Json jsonOf( std::vector< RuleField > const & fields ) {
   Json json = Json::object();
   for ( RuleField const & field : fields ) {
      json[ field.name ] = jsonOf( field );
   }
   return json;
}

Json jsonOf( EntityItem const & item, EntityAttribute const & attribute ) {
   if ( !item.entity.empty() ) {
      return Story::jsonOf( item.entity.front() );
   }
   return attribute.leadsToEntities() ? Json() : Json( item.text );
}

// One value, a list of keys, or values by key.
Json jsonOf( EntityAttribute const & attribute ) {
   if ( !attribute.isKeyed() ) {
      return jsonOf( attribute.items.front(), attribute );
   }
   Json json = attribute.isSet() ? Json::array() : Json::object();
   for ( EntityItem const & item : attribute.items ) {
      if ( attribute.isSet() ) {
         json.push_back( item.key );
      } else {
         json[ item.key ] = jsonOf( item, attribute );
      }
   }
   return json;
}

}  // namespace

Json jsonOf( Rule const & rule ) {
   return { { "unit", rule.key.unit },
            { "group", rule.key.group },
            { "id", rule.key.id },
            { "name", rule.name },
            { "priority", jsonOf( rule.priority ) },
            { "written", rule.isWritten },
            { "qualifiers", jsonOf( rule.qualifiers ) },
            { "actions", jsonOf( rule.actions ) } };
}

Json jsonOf( HardwareCall const & call ) {
   Json values = Json::object();
   for ( CallValue const & value : call.values ) {
      std::visit( [ & ]( auto const & v ) { values[ value.name ] = v; }, value.value );
   }
   return { { "operation", call.operation },
            { "call", textOrNull( call.callText ) },
            { "unit", call.unit },
            { "entry", call.entry },
            { "values", std::move( values ) },
            { "returnCode", jsonOf( call.returnCode ) } };
}

Json jsonOf( Assertion const & assertion ) {
   return { { "file", assertion.file },
            { "line", assertion.line },
            { "function", assertion.function },
            { "expression", assertion.expression } };
}

Json jsonOf( TraceLine const & line ) {
   return { { "handle", line.handle }, { "level", line.level }, { "text", line.text } };
}

Json jsonOf( EntityTree const & tree ) {
   Json json{ { "type", tree.type }, { "identity", tree.identity } };
   if ( !tree.shownAt.empty() ) {
      json[ "shownAt" ] = tree.shownAt;
      return json;
   }
   json[ "attributes" ] = Json::object();
   for ( EntityAttribute const & attribute : tree.attributes ) {
      json[ "attributes" ][ attribute.name ] = jsonOf( attribute );
   }
   return json;
}

Json textOrNull( std::string const & text ) {
   return text.empty() ? Json() : Json( text );
}

}  // namespace Story
