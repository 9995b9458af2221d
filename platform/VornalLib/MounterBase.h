// The base of the Vornal agent's plug-in mounters: a mounter that can also reach the entities which
// the agent shares with its plug-ins by name ("vornalCommon", "tcamManager").
#pragma once

#include <string>

#include <Plugin/Mounter.h>

namespace VornalLib {

// The agent's shared entities. An unknown name gives an empty reference.
class SharedEntities : public Quelm::Counted {
 public:
   virtual Quelm::Ptr< Kiv::Entity > entity( std::string const & name ) = 0;
};

class MounterBase : public Plugin::Mounter {
   KIV_ENTITY( MounterBase, Plugin::Mounter )

   using Mounter::Mounter;

   void sharedEntitiesIs( Quelm::Ptr< SharedEntities > const & shared ) { shared_ = shared; }

   // The agent's shared entity of that name, or an empty reference.
   Quelm::Ptr< Kiv::Entity > sharedEntity( std::string const & name ) const {
      return shared_ ? shared_->entity( name ) : nullptr;
   }

 private:
   Quelm::Ptr< SharedEntities > shared_;
};

}  // namespace VornalLib
