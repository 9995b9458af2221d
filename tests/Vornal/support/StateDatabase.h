// The state database and the agent's shared entities, in memory. Both write down what they are
// asked, in the order of asking, in a journal that they share with whoever is interested.
#pragma once

#include <map>
#include <string>
#include <vector>

#include <Corrum/Mount.h>
#include <VornalLib/MounterBase.h>

namespace Support {

using Journal = std::vector< std::string >;

// Writes "mount PATH TYPE FLAGS" and "close 'NAME'".
class MountGroup : public Corrum::MountGroup {
 public:
   explicit MountGroup( Journal & journal ) : journal_( journal ) {}

   void doMount( Corrum::Mount const & mount ) override {
      journal_.push_back( "mount " + mount.path + " " + mount.type + " " + mount.flags );
   }
   void doClose( std::string const & name ) override {
      journal_.push_back( "close '" + name + "'" );
   }

 private:
   Journal & journal_;
};

// Writes "mount group" and "entity PATH".
class StateDatabase : public Corrum::EntityManager {
 public:
   explicit StateDatabase( Journal & journal ) : journal_( journal ) {}

   void publish( std::string const & path, Quelm::Ptr< Kiv::Entity > const & entity ) {
      entity_[ path ] = entity;
   }
   void withdrawAll() { entity_.clear(); }

   // For the test itself: not written down. The entity must be there and a T.
   template< typename T > Quelm::Ptr< T > at( std::string const & path ) const {
      return Quelm::dynamicCast< T >( entity_.at( path ) );
   }

   Quelm::Ptr< Corrum::MountGroup > getMountGroup() override {
      journal_.emplace_back( "mount group" );
      return Quelm::make< MountGroup >( journal_ );
   }
   Quelm::Ptr< Kiv::Entity > getEntity( std::string const & path ) const override {
      journal_.push_back( "entity " + path );
      auto const found = entity_.find( path );
      return found == entity_.end() ? nullptr : found->second;
   }

 private:
   Journal & journal_;
   std::map< std::string, Quelm::Ptr< Kiv::Entity > > entity_;
};

// Writes "shared NAME".
class SharedEntities : public VornalLib::SharedEntities {
 public:
   explicit SharedEntities( Journal & journal ) : journal_( journal ) {}

   void share( std::string const & name, Quelm::Ptr< Kiv::Entity > const & entity ) {
      entity_[ name ] = entity;
   }
   void withdrawAll() { entity_.clear(); }

   template< typename T > Quelm::Ptr< T > at( std::string const & name ) const {
      return Quelm::dynamicCast< T >( entity_.at( name ) );
   }

   Quelm::Ptr< Kiv::Entity > entity( std::string const & name ) override {
      journal_.push_back( "shared " + name );
      auto const found = entity_.find( name );
      return found == entity_.end() ? nullptr : found->second;
   }

 private:
   Journal & journal_;
   std::map< std::string, Quelm::Ptr< Kiv::Entity > > entity_;
};

}  // namespace Support
