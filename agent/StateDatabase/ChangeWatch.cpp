#include <StateDatabase/ChangeWatch.h>

namespace StateDatabase {

namespace {

std::optional< std::string > textOf( Kiv::Attribute const & attribute,
                                     Kiv::TypedPointer const & value ) {
   return value.get() ? std::optional( attribute.valueTextOf( value ) ) : std::nullopt;
}

}  // namespace

ChangeWatch::ChangeWatch( std::string path, Quelm::Ptr< Kiv::Entity const > const & entity,
                          Story::Observer & observer )
      : path_( std::move( path ) ), observer_( observer ) {
   watchedIs( entity );
   hasNotificationActiveIs( true );
   for ( Kiv::AttributeId id = 1; id <= entity->typeData().attributes().size(); ++id ) {
      watchMembers( id );
   }
}

void ChangeWatch::onAttribute( Kiv::Change const & change ) {
   Kiv::Attribute const & attribute = watched()->typeData().attribute( change.attribute() );
   std::string const key = attribute.keyTextOf( change.rawKey() );
   observer_.onEvent( Story::PublishedChange{ path_, attribute.name(), key,
                                              textOf( attribute, change.rawOldValue() ),
                                              textOf( attribute, change.rawNewValue() ) } );
   if ( attribute.kind() == Kiv::Attribute::Kind::Members ) {
      watchMember( change.attribute(), key );
   }
}

void ChangeWatch::watchMembers( Kiv::AttributeId id ) {
   Kiv::Attribute const & attribute = watched()->typeData().attribute( id );
   if ( attribute.kind() == Kiv::Attribute::Kind::Members ) {
      for ( std::string const & key : attribute.keys( *watched() ) ) {
         watchMember( id, key );
      }
   }
}

void ChangeWatch::watchMember( Kiv::AttributeId id, std::string const & key ) {
   Kiv::Attribute const & attribute = watched()->typeData().attribute( id );
   Member const member( id, key );
   members_.erase( member );
   if ( auto const entity = attribute.entity( *watched(), key ) ) {
      members_.emplace( member, std::make_unique< ChangeWatch >( path_ + "/" + attribute.name() +
                                                                    "[" + key + "]",
                                                                 entity, observer_ ) );
   }
}

}  // namespace StateDatabase
