#include <Shell/StepGrammar.h>

#include <map>

#include <Shell/UnfinishedStep.h>
#include <Steps/Schema.h>
#include <Steps/Table.h>

namespace Shell {

namespace {

using Json = nlohmann::ordered_json;

Json const & definitions() {
   static Json const all = Steps::schema()[ "definitions" ];
   return all;
}

// A piece of the schema with everything that it refers to, or that it may be instead.
struct Piece {
   std::vector< Json const * > shapes;
   std::set< std::string > forms;  // the names of definitions

   bool isEmpty() const { return shapes.empty(); }

   void add( Json const & shape ) {
      if ( auto const reference = shape.find( "$ref" ); reference != shape.end() ) {
         std::string const path = *reference;
         std::string const name = path.substr( path.rfind( '/' ) + 1 );
         forms.insert( name );
         add( definitions().at( name ) );
         return;
      }
      shapes.push_back( &shape );
      for ( char const * const several : { "anyOf", "oneOf", "allOf" } ) {
         if ( auto const all = shape.find( several ); all != shape.end() ) {
            for ( Json const & one : *all ) {
               add( one );
            }
         }
      }
   }

   // The pieces below: under a keyword of the schema, and under a key of a mapping.
   Piece under( char const * keyword ) const {
      Piece piece;
      for ( Json const * const shape : shapes ) {
         if ( auto const found = shape->find( keyword );
              found != shape->end() && found->is_object() ) {
            piece.add( *found );
         }
      }
      return piece;
   }
   Piece underKey( std::string const & key ) const {
      Piece piece;
      for ( Json const * const shape : shapes ) {
         if ( shape->contains( "properties" ) && ( *shape )[ "properties" ].contains( key ) ) {
            piece.add( ( *shape )[ "properties" ][ key ] );
         }
      }
      return piece.isEmpty() ? under( "additionalProperties" ) : piece;
   }
};

std::map< std::string, std::set< Named > > const & namesOfForms() {
   static std::map< std::string, std::set< Named > > const all{
      { "ethernet", { Named::ethernet } },
      { "port-channel", { Named::portChannel } },
      { "segment-interface", { Named::ethernet, Named::portChannel } },
      { "vxlan", { Named::vxlan } },
      { "address", { Named::vtep } },
      { "path", { Named::path } }
   };
   return all;
}

void addNames( Piece const & piece, Expected & expected ) {
   for ( std::string const & form : piece.forms ) {
      if ( auto const found = namesOfForms().find( form ); found != namesOfForms().end() ) {
         expected.names.insert( found->second.begin(), found->second.end() );
      }
   }
}

std::string textOf( Json const & value ) {
   return value.is_string() ? value.get< std::string >() : value.dump();
}

void addKeys( Piece const & piece, OpenValue const & mapping, Expected & expected ) {
   auto const add = [ & ]( std::string const & key ) {
      if ( !mapping.members.contains( key ) ) {
         expected.words.push_back( key + ": " );
      }
   };
   for ( Json const * const shape : piece.shapes ) {
      Json const properties = shape->value( "properties", Json::object() );
      for ( auto const & [ key, _ ] : properties.items() ) {
         add( key );
      }
   }
   Piece const names = piece.under( "propertyNames" );
   for ( Json const * const shape : names.shapes ) {
      for ( Json const & name : shape->value( "enum", Json::array() ) ) {
         add( name );
      }
   }
   addNames( names, expected );
}

void addValues( Piece const & piece, bool isQuoted, Expected & expected ) {
   for ( Json const * const shape : piece.shapes ) {
      for ( Json const & choice : shape->value( "enum", Json::array() ) ) {
         expected.words.push_back( textOf( choice ) );
      }
      if ( shape->contains( "const" ) ) {
         expected.words.push_back( textOf( ( *shape )[ "const" ] ) );
      }
      Json const type = shape->value( "type", Json() );
      if ( type == "boolean" ) {
         expected.words.insert( expected.words.end(), { "true", "false" } );
      } else if ( !isQuoted && type == "object" ) {
         expected.words.emplace_back( "{ " );
      } else if ( !isQuoted && type == "array" ) {
         expected.words.emplace_back( "[ " );
      }
   }
   addNames( piece, expected );
}

// Texts whose meaning only their key says.
void addNamesOfKey( OpenValue const & mapping, Expected & expected ) {
   if ( mapping.key == "attribute" && mapping.members.contains( "entity" ) ) {
      expected.names.insert( Named::attribute );
      expected.entity = mapping.members.at( "entity" );
   } else if ( mapping.key == "capture" ) {
      expected.names.insert( Named::file );
   }
}

}  // namespace

Expected expectedAt( std::string_view step ) {
   UnfinishedStep const unfinished = unfinishedStepIn( step );
   Expected expected{ unfinished.begin };
   if ( unfinished.open.empty() ) {
      return expected;
   }
   Piece piece;
   piece.add( definitions().at( "step" ) );
   for ( OpenValue const & value : unfinished.open ) {
      bool const isLast = &value == &unfinished.open.back();
      if ( value.isMapping && !value.isAtValue ) {
         addKeys( piece, value, expected );
         return expected;
      }
      piece = value.isMapping ? piece.underKey( value.key ) : piece.under( "items" );
      if ( isLast ) {
         addValues( piece, unfinished.isQuoted, expected );
         addNamesOfKey( value, expected );
      }
   }
   expected.isInFlow = unfinished.open.back().isFlow && !unfinished.isQuoted;
   return expected;
}

std::vector< std::string_view > stepNames() {
   std::vector< std::string_view > names;
   for ( Steps::Row const & row : Steps::table() ) {
      names.push_back( row.name );
   }
   return names;
}

std::optional< std::string > purposeOfStep( std::string_view name ) {
   Json const & steps = definitions().at( "step" ).at( "properties" );
   auto const found = steps.find( name );
   if ( found == steps.end() ) {
      return std::nullopt;
   }
   Piece piece;
   piece.add( *found );
   std::string const own = found->value( "description", "" );
   return own.empty() ? piece.shapes.front()->value( "description", "" ) : own;
}

}  // namespace Shell
