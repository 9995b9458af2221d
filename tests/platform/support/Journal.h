// What subscribers saw, one line per change: "leaf1 mtu: 1500 -> 9000".
#pragma once

#include <string>
#include <vector>

#include <Kiv/Entity.h>

namespace Support {

using Journal = std::vector< std::string >;

// "ENTITY ATTRIBUTE: OLD -> NEW", with "[KEY]" after the attribute's name where it has one. A value
// that is not there is called absent, a member of a set present.
inline std::string describe( Kiv::Change const & change ) {
   Kiv::Attribute const & attribute = change.entity().typeData().attribute( change.attribute() );
   auto const valueText = [ & ]( Kiv::TypedPointer const & value ) -> std::string {
      if ( !value.get() ) {
         return "absent";
      }
      bool const isMember = attribute.kind() == Kiv::Attribute::Kind::Set;
      return isMember ? "present" : attribute.valueTextOf( value );
   };
   std::string const key = attribute.keyTextOf( change.rawKey() );
   return change.entity().identity() + " " + attribute.name() +
          ( attribute.isKeyed() ? "[" + key + "]" : "" ) + ": " +
          valueText( change.rawOldValue() ) + " -> " + valueText( change.rawNewValue() );
}

// Notes every change of one entity.
template< typename T > class Scribe {
 public:
   Scribe( Quelm::Ptr< T > const & entity, Journal & journal, std::string const & prefix = "" )
         : watch_( entity, [ &journal, prefix ]( Kiv::Change const & change ) {
              journal.push_back( prefix + describe( change ) );
           } ) {
      watch_.hasNotificationActiveIs( true );
   }

 private:
   Kiv::Watch< T > watch_;
};

template< typename T >
Scribe( Quelm::Ptr< T > const &, Journal &, std::string const & ) -> Scribe< T >;

}  // namespace Support
