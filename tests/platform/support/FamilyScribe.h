// Notes every change of a directory and of every member that it has or has had, in one journal and
// so in the order in which they happened.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "Journal.h"

namespace Support {

template< typename Directory, typename Member > class FamilyScribe {
 public:
   // What a member holds at the moment when it enters.
   using Contents = std::function< std::string( Member const & ) >;

   FamilyScribe( Quelm::Ptr< Directory > const & directory, Kiv::AttributeId members,
                 Journal & journal, Contents const & contents )
         : journal_( journal ),
           contents_( contents ),
           watch_( directory, [ this, members ]( Kiv::Change const & change ) {
              journal_.push_back( describe( change ) );
              if ( change.attribute() == members && change.rawNewValue().get() ) {
                 memberNew( *change.newValue< Quelm::Ptr< Member > >() );
              }
           } ) {
      watch_.hasNotificationActiveIs( true );
   }

   void memberNew( Quelm::Ptr< Member > const & member ) {
      journal_.back() += " {" + contents_( *member ) + "}";
      members_.push_back( std::make_unique< Scribe< Member > >( member, journal_ ) );
   }

 private:
   Journal & journal_;
   Contents contents_;
   Kiv::Watch< Directory > watch_;
   std::vector< std::unique_ptr< Scribe< Member > > > members_;
};

// The texts of the keys of a walk, separated by blanks.
template< typename Walk > std::string keysOf( Walk && walk ) {
   std::string keys;
   for ( ; walk; ++walk ) {
      keys += ( keys.empty() ? "" : " " ) + Quelm::textOf( walk.key() );
   }
   return keys;
}

}  // namespace Support
