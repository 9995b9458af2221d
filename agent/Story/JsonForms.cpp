#include <Story/JsonForms.h>

#include <fmt/format.h>

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

// Of the rule that decided, or null.
Json jsonOf( std::optional< RuleKey > const & rule ) {
   return rule ? Json{ { "unit", rule->unit }, { "group", rule->group }, { "id", rule->id } }
               : Json();
}

Json jsonOf( FrameTunnel const & tunnel ) {
   return { { "source", tunnel.source }, { "destination", tunnel.destination } };
}

Json jsonOf( FrameInner const & inner ) {
   return { { "source", inner.source },
            { "destination", inner.destination },
            { "vlan", inner.vlan },
            { "etherType", inner.etherType },
            { "sourceIp", Story::jsonOf( inner.sourceIp ) },
            { "destinationIp", Story::jsonOf( inner.destinationIp ) } };
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

Json jsonOf( Story::Difference const & difference ) {
   return { { "kind", Story::nameOf( difference.kind ) },
            { "unit", Story::jsonOf( difference.unit ) },
            { "group", Story::jsonOf( difference.group ) },
            { "entry", difference.entry == 0 ? Json() : Json( difference.entry ) },
            { "rule", textOrNull( difference.rule ) },
            { "field", textOrNull( difference.field ) },
            { "is", difference.is },
            { "shouldBe", difference.shouldBe },
            { "because", difference.because } };
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

Json jsonOf( FrameForwarded const & frame ) {
   Json ingress = Json::array();
   for ( FrameIngress const & lookup : frame.ingress ) {
      ingress.push_back( { { "unit", lookup.unit },
                           { "rule", jsonOf( lookup.rule ) },
                           { "classId", lookup.classId == 0 ? Json() : Json( lookup.classId ) } } );
   }
   Json ports = Json::array();
   for ( FrameCopy const & copy : frame.copies ) {
      ports.push_back( { { "interface", textOrNull( copy.intf ) },
                         { "vtep", textOrNull( copy.vtep ) },
                         { "unit", jsonOf( copy.unit ) },
                         { "port", jsonOf( copy.port ) },
                         { "verdict", copy.verdict },
                         { "rule", jsonOf( copy.rule ) } } );
   }
   return { { "number", frame.number },
            { "arrival", textOrNull( frame.arrival ) },
            { "length", frame.length },
            { "outer", frame.tunnel ? jsonOf( *frame.tunnel ) : Json() },
            { "inner", frame.inner ? jsonOf( *frame.inner ) : Json() },
            { "vni", frame.tunnel ? jsonOf( frame.tunnel->vni ) : Json() },
            { "kind", textOrNull( frame.kind ) },
            { "dropReason", textOrNull( frame.dropReason ) },
            { "ingress", std::move( ingress ) },
            { "ports", std::move( ports ) } };
}

Json jsonOf( Audited const & audited ) {
   Json json{ { "inStep", true },
              { "rules", audited.rules },
              { "entries", audited.entries },
              { "differences", Json::array() },
              { "known", Json::array() } };
   for ( Story::Difference const & difference : audited.differences ) {
      bool const isKnown = Story::isKnown( difference.kind );
      json[ isKnown ? "known" : "differences" ].push_back( jsonOf( difference ) );
   }
   json[ "inStep" ] = json[ "differences" ].empty();
   json[ "unprotected" ] = audited.unprotected;
   return json;
}

Json jsonOf( std::vector< KnownLimit > const & limits ) {
   Json json = Json::array();
   for ( KnownLimit const & limit : limits ) {
      json.push_back( { { "title", limit.title }, { "remedy", limit.remedy } } );
   }
   return json;
}

// A dump escapes the control characters below the blank. The others, DEL and U+0080 to U+009F, can
// stand in its texts alone.
std::string documentText( Json const & document ) {
   constexpr char kDel = 0x7f;
   constexpr char kC1Lead = '\xc2';
   std::string const dumped = document.dump( 3, ' ', false, Json::error_handler_t::replace );
   std::string text;
   text.reserve( dumped.size() + 1 );
   for ( std::size_t n = 0; n < dumped.size(); ++n ) {
      bool const isC1 = dumped[ n ] == kC1Lead && static_cast< U8 >( dumped[ n + 1 ] ) < 0xa0;
      if ( isC1 || dumped[ n ] == kDel ) {
         n += isC1 ? 1 : 0;
         text += fmt::format( "\\u{:04x}", static_cast< U8 >( dumped[ n ] ) );
      } else {
         text += dumped[ n ];
      }
   }
   return text + '\n';
}

Json textOrNull( std::string const & text ) {
   return text.empty() ? Json() : Json( text );
}

}  // namespace Story
