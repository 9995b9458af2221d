#include <StateDatabase/Tree.h>

#include <map>

namespace StateDatabase {

namespace {

using Kind = Kiv::Attribute::Kind;

// One walk over an entity and the entities that it refers to.
class Walk {
 public:
   explicit Walk( Directory::Entities const & published ) {
      for ( auto const & [ path, entity ] : published ) {
         shownAt_.emplace( entity.get(), "/" + path );
      }
   }

   // The tree of an entity that is shown here.
   Story::EntityTree here( std::string const & path, Kiv::Entity const & entity ) {
      shownAt_.emplace( &entity, path );
      Story::EntityTree tree{ entity.typeData().name(), entity.identity(), {}, {} };
      for ( Kiv::Attribute const * const attribute : entity.typeData().attributes() ) {
         if ( attribute->kind() != Kind::Operation ) {
            tree.attributes.push_back( read( path, entity, *attribute ) );
         }
      }
      return tree;
   }

 private:
   // The tree of an entity at the end of a reference.
   Story::EntityTree target( std::string const & path, Kiv::Entity const & entity ) {
      auto const shown = shownAt_.find( &entity );
      if ( shown == shownAt_.end() ) {
         return here( path, entity );
      }
      return { entity.typeData().name(), entity.identity(), shown->second, {} };
   }

   Story::EntityAttribute read( std::string const & path, Kiv::Entity const & entity,
                                Kiv::Attribute const & attribute ) {
      std::string const place = path + "/" + attribute.name();
      Story::EntityAttribute result{ attribute.name(), attribute.kind(), {} };
      if ( !attribute.isKeyed() ) {
         result.items.push_back( item( place, entity, attribute, {} ) );
         return result;
      }
      for ( std::string const & key : attribute.keys( entity ) ) {
         result.items.push_back( item( place + "[" + key + "]", entity, attribute, key ) );
      }
      return result;
   }

   Story::EntityItem item( std::string const & place, Kiv::Entity const & entity,
                           Kiv::Attribute const & attribute, std::string const & key ) {
      Story::EntityItem result{ key, {}, {} };
      if ( attribute.kind() == Kind::Reference || attribute.kind() == Kind::Members ) {
         if ( auto const referredTo = attribute.entity( entity, key ) ) {
            result.entity.push_back( target( place, *referredTo ) );
         }
      } else if ( attribute.kind() != Kind::Set ) {
         result.text = attribute.text( entity, key );
      }
      return result;
   }

   std::map< Kiv::Entity const *, std::string > shownAt_;
};

}  // namespace

Story::EntityTree treeOf( std::string const & path, Kiv::Entity const & entity,
                          Directory::Entities const & published ) {
   return Walk( published ).here( path, entity );
}

}  // namespace StateDatabase
