#include <StateDatabase/Finder.h>

#include <Quelm/Error.h>
#include <StateDatabase/TypeName.h>

namespace StateDatabase {

namespace {

using Segment = EntityPath::Segment;

std::string textOf( Segment const & segment ) {
   return segment.key ? segment.name + "[" + *segment.key + "]" : segment.name;
}

// The path of the first `count` segments.
std::string beginning( EntityPath const & path, std::size_t count ) {
   auto const & segments = path.segments();
   return EntityPath(
             { segments.begin(), segments.begin() + static_cast< std::ptrdiff_t >( count ) } )
      .stringValue();
}

// From the entity that the first `taken` segments lead to.
Quelm::Ptr< Kiv::Entity > step( Kiv::Entity const & from, EntityPath const & path,
                                std::size_t taken ) {
   using Kind = Kiv::Attribute::Kind;
   Segment const & segment = path.segments()[ taken ];
   Kiv::Attribute const & attribute = attributeOf( from, segment.name );
   bool const isKeyed = attribute.kind() == Kind::Members;
   if ( !isKeyed && attribute.kind() != Kind::Reference ) {
      throw Quelm::AccessError(
         "attribute '" + segment.name +
         "' holds values and no entities; name its owner, which shows them: '" +
         beginning( path, taken ) + "'" );
   }
   if ( segment.key.has_value() != isKeyed ) {
      throw Quelm::AccessError( "attribute '" + segment.name +
                                ( isKeyed ? "' needs a key in brackets" : "' takes no key" ) );
   }
   auto next = attribute.entity( from, segment.key.value_or( "" ) );
   if ( !next ) {
      throw Quelm::AccessError( "there is no entity at '" + textOf( segment ) + "'" );
   }
   return next;
}

}  // namespace

Kiv::Attribute const & attributeOf( Kiv::Entity const & entity, std::string const & name ) {
   if ( Kiv::Attribute const * const found = entity.typeData().find( name ) ) {
      return *found;
   }
   std::string known;
   for ( Kiv::Attribute const * const attribute : entity.typeData().attributes() ) {
      known += ( known.empty() ? "" : ", " ) + attribute->name();
   }
   throw Quelm::AccessError( withArticle( entity.typeData().name() ) + " has no attribute '" +
                             name + "'" + ( known.empty() ? "" : "; it has " + known ) );
}

Finder::Root Finder::rootOf( EntityPath const & path ) const {
   Root root;
   std::string text;
   for ( std::size_t n = 0; n < path.segments().size() && !path.segments()[ n ].key; ++n ) {
      text += ( n == 0 ? "" : "/" ) + path.segments()[ n ].name;
      for ( Directory const * const directory : directories_ ) {
         if ( auto const entity = directory->entity( text ) ) {
            root = { entity, n + 1 };
         }
      }
   }
   return root;
}

Quelm::Ptr< Kiv::Entity > Finder::entity( EntityPath const & path ) const {
   auto [ entity, taken ] = rootOf( path );
   if ( !entity ) {
      std::string known;
      for ( auto const & [ root, unused ] : roots() ) {
         known += "\n   /" + root;
      }
      throw Quelm::AccessError( "there is no entity at '" + path.stringValue() +
                                "'; paths begin with one of" + known );
   }
   for ( std::size_t n = taken; n < path.segments().size(); ++n ) {
      entity = step( *entity, path, n );
   }
   return entity;
}

Directory::Entities Finder::roots() const {
   Directory::Entities all;
   for ( Directory const * const directory : directories_ ) {
      all.insert( directory->entities().begin(), directory->entities().end() );
   }
   return all;
}

}  // namespace StateDatabase
