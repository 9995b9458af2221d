#include <Dumping/Items.h>

#include <algorithm>
#include <array>
#include <regex>

#include <StateDatabase/EntityPath.h>

namespace Dumping {

namespace {

using Scenario::Yaml;
using Scenario::yamlMapping;
using Scenario::yamlText;
using StateDatabase::EntityPath;

using Values = std::map< std::string, std::string >;

constexpr std::string_view kThere = "there";
constexpr std::string_view kPort = "/shared/vornalCommon/vornalIntfToPort[]";
constexpr std::string_view kCachedPort = "/shared/vornalCommon/vornalIntfToPortCache[]";

Values publishedIn( Story::Table const & state ) {
   Values values;
   for ( auto const & row : state.rows ) {
      if ( row[ 0 ].words() == "published" ) {
         values[ row[ 1 ].words() ] = row[ 2 ].words();
      }
   }
   return values;
}

Item itemOf( std::string const & path, std::string const & value ) {
   Item item{ "", {}, value };
   EntityPath const place = EntityPath::fromString( path );
   for ( EntityPath::Segment const & segment : place.segments() ) {
      item.shape += "/" + segment.name + ( segment.key ? "[]" : "" );
      if ( segment.key ) {
         item.keys.push_back( *segment.key );
      }
   }
   return item;
}

// It follows from what others publish.
bool isConsequence( std::string const & path ) {
   static constexpr std::array< std::string_view, 3 > folders{
      "/shared/tcamManager/", "/shared/vornalCommon/sliceDependencyPoints/",
      "/hardware/vornal/i2eclassid/"
   };
   return std::any_of( folders.begin(), folders.end(),
                       [ & ]( std::string_view folder ) { return path.starts_with( folder ); } );
}

Yaml stepOf( std::string const & word, Yaml content ) {
   return yamlMapping( { { word, inLine( std::move( content ) ) } } );
}

// The words that lead to the attribute at the end of the path.
Yaml attributeAt( std::string const & path ) {
   auto segments = EntityPath::fromString( path ).segments();
   EntityPath::Segment const last = segments.back();
   segments.pop_back();
   Yaml words = yamlMapping( { { "entity", yamlText( EntityPath( segments ).stringValue() ) },
                               { "attribute", yamlText( last.name ) } } );
   if ( last.key ) {
      words.set( "key", yamlText( *last.key ) );
   }
   return words;
}

// An entity's own name comes with the entity.
std::string withoutName( std::string const & path ) {
   std::string const name = "]/intfId";
   return path.ends_with( name ) ? path.substr( 0, path.size() - name.size() + 1 ) : path;
}

Yaml published( std::string const & intf, Yaml const & port ) {
   return stepOf( "publish", yamlMapping( { { "interfaces",
                                              inLine( yamlMapping( { { intf, port } } ) ) } } ) );
}

Yaml removed( std::string const & path ) {
   return stepOf( "delete", attributeAt( withoutName( path ) ) );
}

Yaml changed( std::string const & path, std::string const & value ) {
   Item const item = itemOf( path, value );
   if ( auto const port = portOf( value ); port && item.shape == kPort ) {
      return published( item.keys.front(), *port );
   }
   std::string const place = withoutName( path );
   Yaml words = attributeAt( place );
   if ( value != kThere && place == path ) {
      words.set( "value", yamlText( value ) );
   }
   return stepOf( "set", words );
}

// The published port comes with the cached one.
bool comesWithAnother( std::string const & path, Values const & wanted ) {
   Item const item = itemOf( path, "" );
   if ( item.shape != kCachedPort ) {
      return false;
   }
   std::string live = path;
   live.replace( live.find( "Cache[" ), 5, "" );
   auto const port = wanted.find( live );
   auto const cached = wanted.find( path );
   return port != wanted.end() && cached != wanted.end() && port->second == cached->second;
}

}  // namespace

std::vector< Item > publishedItems( Story::Table const & state ) {
   std::vector< Item > items;
   for ( auto const & row : state.rows ) {
      if ( row[ 0 ].words() == "published" ) {
         items.push_back( itemOf( row[ 1 ].words(), row[ 2 ].words() ) );
      }
   }
   return items;
}

std::optional< Yaml > portOf( std::string const & text ) {
   static std::regex const form( "unit([0-9]+)/port([0-9]+)/mod[0-9]+" );
   std::smatch parts;
   if ( !std::regex_match( text, parts, form ) ) {
      return std::nullopt;
   }
   return inLine( yamlMapping(
      { { "unit", yamlText( parts[ 1 ].str() ) }, { "port", yamlText( parts[ 2 ].str() ) } } ) );
}

std::vector< Yaml > repairs( Story::Table const & wanted, Story::Table const & is ) {
   Values const before = publishedIn( is );
   Values const after = publishedIn( wanted );
   std::vector< Yaml > steps;
   for ( auto const & [ path, value ] : before ) {
      if ( !after.contains( path ) && !isConsequence( path ) ) {
         steps.push_back( removed( path ) );
      }
   }
   for ( auto const & [ path, value ] : after ) {
      auto const there = before.find( path );
      bool const isRight = there != before.end() && there->second == value;
      if ( !isRight && !isConsequence( path ) && !comesWithAnother( path, after ) ) {
         steps.push_back( changed( path, value ) );
      }
   }
   return steps;
}

namespace {

// The step names the key, alone, in a path, or as a dependency point.
bool names( Yaml const & step, std::string const & key ) {
   auto const isIt = [ & ]( std::string const & text ) {
      return text == key || text.ends_with( "::" + key ) ||
             text.find( '[' + key + ']' ) != std::string::npos;
   };
   return isIt( step.key ) || isIt( step.text ) ||
          std::any_of( step.parts.begin(), step.parts.end(),
                       [ & ]( Yaml const & part ) { return names( part, key ); } );
}

bool isTouched( Item const & item, std::vector< Yaml > const & steps ) {
   return std::any_of( steps.begin(), steps.end(), [ & ]( Yaml const & step ) {
      return std::all_of( item.keys.begin(), item.keys.end(),
                          [ & ]( std::string const & key ) { return names( step, key ); } );
   } );
}

}  // namespace

Story::Table mixed( Story::Table const & before, Story::Table const & after,
                    std::vector< Yaml > const & steps ) {
   auto const isOf = [ & ]( std::vector< Story::Cell > const & row, bool isOld ) {
      return row[ 0 ].words() == "published" &&
             isTouched( itemOf( row[ 1 ].words(), "" ), steps ) == isOld;
   };
   Story::Table state{ after.name, after.columns, {} };
   for ( auto const & row : after.rows ) {
      if ( isOf( row, false ) ) {
         state.rows.push_back( row );
      }
   }
   for ( auto const & row : before.rows ) {
      if ( isOf( row, true ) ) {
         state.rows.push_back( row );
      }
   }
   return state;
}

}  // namespace Dumping
