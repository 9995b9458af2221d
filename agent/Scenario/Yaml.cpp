#include <Scenario/Yaml.h>

#include <algorithm>

#include <yaml-cpp/yaml.h>

#include <Scenario/Document.h>
#include <Scenario/Survey.h>

namespace Scenario {

namespace {

bool isQuotedIn( YAML::Node const & node ) {
   return node.Tag() == "!";
}

Yaml valueOf( YAML::Node const & node ) {
   Yaml value;
   value.isInLine = node.Style() == YAML::EmitterStyle::Flow;
   switch ( node.Type() ) {
   case YAML::NodeType::Map:
      value.kind = Yaml::Kind::mapping;
      for ( auto const & member : node ) {
         Yaml part = valueOf( member.second );
         part.key = member.first.Scalar();
         part.isKeyQuoted = isQuotedIn( member.first );
         value.parts.push_back( std::move( part ) );
      }
      break;
   case YAML::NodeType::Sequence:
      value.kind = Yaml::Kind::list;
      for ( YAML::Node const & element : node ) {
         value.parts.push_back( valueOf( element ) );
      }
      break;
   case YAML::NodeType::Scalar:
      value.kind = Yaml::Kind::text;
      value.text = node.Scalar();
      value.isQuoted = isQuotedIn( node );
      break;
   default: break;
   }
   return value;
}

void emitText( YAML::Emitter & out, std::string const & text, bool isQuoted ) {
   if ( isQuoted ) {
      out << YAML::DoubleQuoted;
   }
   out << text;
}

// Unlike the library's own way, this keeps the quotes of a text that looks like a number.
void emit( YAML::Emitter & out, Yaml const & value ) {
   auto const layout = value.isInLine ? YAML::Flow : YAML::Block;
   switch ( value.kind ) {
   case Yaml::Kind::mapping:
      out << layout << YAML::BeginMap;
      for ( Yaml const & part : value.parts ) {
         out << YAML::Key;
         emitText( out, part.key, part.isKeyQuoted );
         out << YAML::Value;
         emit( out, part );
      }
      out << YAML::EndMap;
      break;
   case Yaml::Kind::list:
      out << layout << YAML::BeginSeq;
      for ( Yaml const & part : value.parts ) {
         emit( out, part );
      }
      out << YAML::EndSeq;
      break;
   case Yaml::Kind::text: emitText( out, value.text, value.isQuoted ); break;
   default: out << YAML::Null;
   }
}

}  // namespace

Yaml const * Yaml::find( std::string_view name ) const {
   auto const found = std::find_if( parts.begin(), parts.end(),
                                    [ & ]( Yaml const & part ) { return part.key == name; } );
   return kind == Kind::mapping && found != parts.end() ? &*found : nullptr;
}

Yaml & Yaml::part( std::string_view name ) {
   kind = Kind::mapping;
   auto const found = std::find_if( parts.begin(), parts.end(),
                                    [ & ]( Yaml const & part ) { return part.key == name; } );
   if ( found != parts.end() ) {
      return *found;
   }
   parts.emplace_back().key = name;
   return parts.back();
}

void Yaml::set( std::string_view name, Yaml value ) {
   Yaml & there = part( name );
   value.key = name;
   value.isKeyQuoted = there.isKeyQuoted;
   there = std::move( value );
}

void Yaml::remove( std::string_view name ) {
   std::erase_if( parts, [ & ]( Yaml const & part ) { return part.key == name; } );
}

void Yaml::add( Yaml element ) {
   kind = Kind::list;
   parts.push_back( std::move( element ) );
}

Yaml yamlText( std::string_view text ) {
   Yaml value;
   value.kind = Yaml::Kind::text;
   value.text = text;
   return value;
}

Yaml yamlList( std::vector< Yaml > elements ) {
   Yaml value;
   value.kind = Yaml::Kind::list;
   value.parts = std::move( elements );
   return value;
}

Yaml yamlMapping( std::vector< std::pair< std::string, Yaml > > const & parts ) {
   Yaml value;
   value.kind = Yaml::Kind::mapping;
   for ( auto const & [ key, part ] : parts ) {
      value.set( key, part );
   }
   return value;
}

Yaml inLine( Yaml value ) {
   value.isInLine = true;
   return value;
}

Yaml yamlIn( std::string const & text ) {
   return valueOf( parsed( withoutMark( text ) ) );
}

std::string textOf( Yaml const & document ) {
   YAML::Emitter out;
   emit( out, document );
   return std::string( out.c_str() ) + '\n';
}

std::string pageOf( Yaml const & document ) {
   std::string page;
   for ( Yaml const & part : document.parts ) {
      std::string const text = textOf( yamlMapping( { { part.key, part } } ) );
      bool const isLong = text.find( '\n' ) + 1 != text.size();
      page += ( isLong && !page.empty() ? "\n" : "" ) + text;
   }
   return page;
}

}  // namespace Scenario
