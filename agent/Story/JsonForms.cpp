#include <Story/JsonForms.h>

#include <fmt/format.h>

#include <SoftSdk/PortBitmap.h>
#include <Story/DocumentVersion.h>

namespace Story {

namespace {

Json masked( U32 data, U32 mask ) {
   return { { "data", data }, { "mask", mask } };
}

// {"data": 4, "mask": 255}; a port and its module have one each.
Json jsonOf( Chip::Qualifier qualifier, Chip::Match const & match ) {
   Json const json = masked( match.data, match.mask );
   return rowOf( qualifier ).hasModule
             ? Json{ { "modId", masked( match.modId, match.modIdMask ) }, { "port", json } }
             : json;
}

// {"data": 4, "mask": null}, {"ports": [3, 4]}, {}.
Json jsonOf( Chip::Action action, Chip::ActionParameters const & parameters ) {
   switch ( rowOf( action ).parameters ) {
   case Chip::ParametersUsed::None: break;
   case Chip::ParametersUsed::Number: return { { "data", parameters.param0 }, { "mask", nullptr } };
   case Chip::ParametersUsed::Ports: return { { "ports", Chip::portsOf( parameters.ports ) } };
   }
   return Json::object();
}

// The content's qualifiers or actions, by name.
Json jsonOf( Chip::EntryContent const & content, auto const & parts ) {
   Json json = Json::object();
   for ( auto const part : parts ) {
      if ( content[ part ] ) {
         json[ std::string( nameOf( part ) ) ] = jsonOf( part, *content[ part ] );
      }
   }
   return json;
}

// The text of a value, or null.
template< typename T > Json textOf( std::optional< T > const & value ) {
   return value ? Json( value->stringValue() ) : Json();
}

// The name of a value of an enumeration, or null.
template< typename T > Json nameOf( std::optional< T > const & value ) {
   return value ? Json( Chip::nameOf( *value ) ) : Json();
}

Json jsonOf( Chip::TunnelStory const & tunnel ) {
   return { { "source", tunnel.source.stringValue() },
            { "destination", tunnel.destination.stringValue() } };
}

Json jsonOf( Chip::InnerStory const & inner ) {
   return { { "source", inner.source.stringValue() },
            { "destination", inner.destination.stringValue() },
            { "vlan", inner.vlan },
            { "etherType", inner.etherType },
            { "sourceIp", inner.ip ? Json( inner.ip->source.stringValue() ) : Json() },
            { "destinationIp", inner.ip ? Json( inner.ip->destination.stringValue() ) : Json() } };
}

Json jsonOf( Chip::Copy const & copy ) {
   bool const hasPort = copy.port.isValid() && copy.verdict != Chip::Verdict::NoPort;
   return { { "interface", textOrNull( copy.intfId.stringValue() ) },
            { "vtep", textOf( copy.remoteVtep ) },
            { "unit", hasPort ? Json( copy.port.unit() ) : Json() },
            { "port", hasPort ? Json( copy.port.logicalPort() ) : Json() },
            { "verdict", Chip::nameOf( copy.verdict ) },
            { "rule", Story::jsonOf( copy.rule ) } };
}

template< typename T > Json listOf( std::vector< T > const & values ) {
   Json json = Json::array();
   for ( T const & value : values ) {
      json.push_back( jsonOf( value ) );
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

Json jsonOf( Chip::Rule const & rule ) {
   return { { "unit", rule.key.unit },
            { "group", rule.key.group },
            { "id", rule.key.id },
            { "name", rule.name },
            { "priority", jsonOf( rule.content.priority ) },
            { "written", rule.isWritten },
            { "qualifiers", jsonOf( rule.content, Chip::kQualifiers ) },
            { "actions", jsonOf( rule.content, Chip::kActions ) } };
}

Json jsonOf( Chip::HardwareCall const & call ) {
   Json values = Json::object();
   for ( Chip::NamedValue const & named : call.values ) {
      std::visit( Overloaded{ [ & ]( Brum::PerUnitBitmap const & ports ) {
                                values[ named.name ] = Chip::portsOf( ports );
                             },
                              [ & ]( auto const & value ) { values[ named.name ] = value; } },
                  named.value );
   }
   return { { "operation", call.operation },
            { "call", textOrNull( call.callText ) },
            { "unit", call.unit },
            { "entry", call.entry },
            { "values", std::move( values ) },
            { "returnCode", jsonOf( call.returnCode ) } };
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

Json jsonOf( StepBegins const & step ) {
   return { { "kind", jsonOf( step.kind ) },
            { "number", step.number },
            { "text", step.text },
            { "place", textOrNull( step.place ) } };
}

Json jsonOf( FrameForwarded const & event ) {
   Chip::FrameStory const & frame = event.frame;
   return { { "number", event.number },
            { "arrival", textOrNull( frame.arrivalIntfId.stringValue() ) },
            { "length", frame.length },
            { "outer", frame.tunnel ? jsonOf( *frame.tunnel ) : Json() },
            { "inner", frame.inner ? jsonOf( *frame.inner ) : Json() },
            { "vni", frame.tunnel ? jsonOf( frame.tunnel->vni ) : Json() },
            { "kind", nameOf( frame.kind ) },
            { "dropReason", nameOf( frame.dropReason ) },
            { "ingress", jsonOf( frame.ingress ) },
            { "ports", listOf( frame.copies ) } };
}

Json jsonOf( Audited const & audited ) {
   Json json{ { "inSync", true },
              { "rules", audited.rules },
              { "entries", audited.entries },
              { "differences", Json::array() },
              { "known", Json::array() } };
   for ( Story::Difference const & difference : audited.differences ) {
      bool const isKnown = Story::isKnown( difference.kind );
      json[ isKnown ? "known" : "differences" ].push_back( jsonOf( difference ) );
   }
   json[ "inSync" ] = json[ "differences" ].empty();
   json[ "unprotected" ] = audited.unprotected;
   return json;
}

Json jsonOf( Cell const & cell ) {
   return std::visit( Overloaded{ []( std::monostate ) { return Json(); },
                                  []( auto const & value ) { return Json( value ); } },
                      cell.value );
}

Json jsonOf( Node const & node ) {
   Json json{ { "kind", node.kind }, { "text", node.text } };
   for ( NamedCell const & value : node.values ) {
      json[ value.name ] = jsonOf( value.cell );
   }
   json[ "children" ] = jsonOf( node.children );
   return json;
}

Json jsonOf( Table const & table ) {
   Json rows = Json::array();
   for ( auto const & row : table.rows ) {
      Json & object = rows.emplace_back( Json::object() );
      for ( std::size_t n = 0; n < row.size(); ++n ) {
         object[ table.columns[ n ] ] = jsonOf( row[ n ] );
      }
   }
   return { { table.name, std::move( rows ) } };
}

Json jsonOf( std::vector< KnownLimit > const & limits ) {
   Json json = Json::array();
   for ( KnownLimit const & limit : limits ) {
      json.push_back( { { "title", limit.title }, { "remedy", limit.remedy } } );
   }
   return json;
}

Json jsonOf( StepKind kind ) {
   switch ( kind ) {
   case StepKind::StartUp: return "start-up";
   case StepKind::Scenario: return "scenario";
   case StepKind::Verification: return "verification";
   case StepKind::Teardown: break;
   }
   return "teardown";
}

Json jsonOf( PluginPass::State state ) {
   switch ( state ) {
   case PluginPass::State::Begins: return "begins";
   case PluginPass::State::Held: return "held";
   case PluginPass::State::Absent: return "absent";
   case PluginPass::State::Skipped: break;
   }
   return "skipped";
}

Json jsonOf( Event const & event ) {
   return std::visit(
      []< typename What >( What const & what ) {
         Json json = Json::object();
         if constexpr ( std::is_same_v< What, RunBegins > ) {
            json[ "formatVersion" ] = kDocumentVersion;
         }
         json[ "event" ] = What::kName;
         json.update( jsonOf( what ) );
         return json;
      },
      event );
}

namespace {

constexpr int kIndent = 3;

// Escapes DEL and U+0080 to U+009F, which can stand only in the texts of a document. A dump escapes
// the control characters below the blank itself. `first` is put in front of the members of an
// object in several lines: documents can be large, and a copy with one more member would take their
// memory twice.
std::string textOf( Json const & document, int indent, std::string const & first = "" ) {
   constexpr char kDel = 0x7f;
   constexpr char kC1Lead = '\xc2';
   constexpr std::string_view kOpening = "{\n";
   std::string const dumped = document.dump( indent, ' ', false, Json::error_handler_t::replace );
   bool const hasMembers = !first.empty() && dumped.starts_with( kOpening );
   std::string text = hasMembers ? std::string( kOpening ) + first : "";
   text.reserve( text.size() + dumped.size() + 1 );
   for ( std::size_t n = hasMembers ? kOpening.size() : 0; n < dumped.size(); ++n ) {
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

}  // namespace

std::string documentText( Json const & document ) {
   return textOf( document, kIndent,
                  fmt::format( "   \"formatVersion\": \"{}\",\n", kDocumentVersion ) );
}

std::string elementText( Json const & element, int depth ) {
   std::string const margin( static_cast< std::size_t >( kIndent * depth ), ' ' );
   std::string text = margin;
   std::string const lines = textOf( element, kIndent );
   for ( char const c : std::string_view( lines ).substr( 0, lines.size() - 1 ) ) {
      text += c;
      text += c == '\n' ? margin : "";
   }
   return text;
}

std::string lineText( Json const & object ) {
   constexpr int kOneLine = -1;
   return textOf( object, kOneLine );
}

Json textOrNull( std::string const & text ) {
   return text.empty() ? Json() : Json( text );
}

}  // namespace Story
