#include <StateDatabase/Finder.h>

#include <algorithm>

#include <Quelm/Error.h>
#include <StateDatabase/TypeName.h>
#include <Text/Words.h>

namespace StateDatabase {

namespace {

using Segment = EntityPath::Segment;

// "it has Ethernet1, Ethernet2 and 7 more".
std::string keysOf( Kiv::Attribute const & attribute, Kiv::Entity const & entity ) {
   constexpr std::size_t kMost = 20;
   auto const keys = attribute.keys( entity );
   std::string text;
   for ( std::size_t n = 0; n < std::min( keys.size(), kMost ); ++n ) {
      text += ( n == 0 ? "" : ", " ) + keys[ n ];
   }
   std::string const more =
      keys.size() > kMost ? " and " + std::to_string( keys.size() - kMost ) + " more" : "";
   return text.empty() ? "it is empty" : "it has " + text + more;
}

// Says that the attribute leads to no entity.
std::string nowhere( Kiv::Attribute const & attribute, Kiv::Entity const & entity,
                     Segment const & segment ) {
   return segment.key ? "'" + segment.name + "' has no key '" + *segment.key + "'; " +
                           keysOf( attribute, entity )
                      : "'" + segment.name + "' refers to nothing";
}

// The path of the first `count` segments.
std::string beginning( EntityPath const & path, std::size_t count ) {
   auto const & segments = path.segments();
   return EntityPath(
             { segments.begin(), segments.begin() + static_cast< std::ptrdiff_t >( count ) } )
      .stringValue();
}

// Follows the segment at `taken` from the entity that the segments before it lead to.
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
                                ( isKeyed
                                     ? "' needs a key in brackets; " + keysOf( attribute, from )
                                     : "' takes no key; leave the brackets out" ) );
   }
   auto next = attribute.entity( from, segment.key.value_or( "" ) );
   if ( !next ) {
      throw Quelm::AccessError( nowhere( attribute, from, segment ) );
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

// "did you mean '/evpn/status'? Paths" for a path that begins almost like that; else "paths".
std::string Finder::hintOf( EntityPath const & path ) const {
   Directory::Entities const all = roots();
   std::vector< std::string > known;
   for ( auto const & [ root, unused ] : all ) {
      known.push_back( "/" + root );
   }
   std::vector< std::string_view > const words( known.begin(), known.end() );
   for ( std::size_t count = path.segments().size(); count > 0; --count ) {
      std::string_view const near = Text::nearest( beginning( path, count ), words );
      if ( !near.empty() ) {
         return "did you mean '" + std::string( near ) + "'? Paths";
      }
   }
   return "paths";
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
      throw Quelm::AccessError( "there is no entity at '" + path.stringValue() + "'; " +
                                hintOf( path ) + " begin with one of" + known );
   }
   for ( std::size_t n = taken; n < path.segments().size(); ++n ) {
      try {
         entity = step( *entity, path, n );
      } catch ( Quelm::AccessError const & error ) {
         throw Quelm::AccessError( "there is no entity at '" + path.stringValue() +
                                   "': " + error.what() );
      }
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
