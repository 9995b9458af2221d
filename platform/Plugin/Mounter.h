// How an agent meets its plug-ins.
//
// A plug-in is a shared object that the agent opens. Opening it runs its module initialisation,
// which registers one or more mounters by a MounterRegistration. The agent then creates every
// mounter it finds, tells it its slice and its entity manager, and calls doInit(); when the paths
// that doInit() asked for are mounted, doMountsComplete() follows in an activity turn of its own.
//
// The registration goes with the module: after closing the shared object its mounters are gone.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <Corrum/Mount.h>
#include <Kiv/Entity.h>

namespace Plugin {

class Mounter : public Kiv::NamedEntity {
   KIV_ENTITY( Mounter, Kiv::NamedEntity )

   using NamedEntity::NamedEntity;

   virtual void doInit() = 0;
   virtual void doMountsComplete( Corrum::MountStatus status,
                                  Quelm::Ptr< Corrum::EntityManager > entityManager ) = 0;

   // The part of the switch that this agent drives, as text ("3").
   std::string const & sliceId() const { return sliceId_; }
   void sliceIdIs( std::string const & sliceId ) { sliceId_ = sliceId; }

   Quelm::Ptr< Corrum::EntityManager > const & entityManager() const { return entityManager_; }
   void entityManagerIs( Quelm::Ptr< Corrum::EntityManager > const & manager ) {
      entityManager_ = manager;
   }

 private:
   std::string sliceId_;
   Quelm::Ptr< Corrum::EntityManager > entityManager_;
};

// One kind of mounter that a loaded module offers.
class MounterRegistration {
 public:
   using Create = std::function< Quelm::Ptr< Mounter >( std::string const & name ) >;

   // `name` is the mounter's type and the name it is created with.
   MounterRegistration( std::string name, Create create );
   MounterRegistration( MounterRegistration const & ) = delete;
   MounterRegistration & operator=( MounterRegistration const & ) = delete;
   ~MounterRegistration();

   std::string const & name() const { return name_; }
   Quelm::Ptr< Mounter > mounterNew() const { return create_( name_ ); }

 private:
   std::string name_;
   Create create_;
};

// The mounters of the loaded modules, in the order of loading.
std::vector< MounterRegistration const * > registeredMounters();

}  // namespace Plugin
