// Tells an observer of every change of an entity, and of the entities in its collections.
//
// A member that enters a collection is watched from then on, and one that leaves no longer: what it
// holds when it enters is part of its entering and not told by itself. A watch that is built before
// others subscribe tells of a change before they act on it.
//
// Cost: the texts of key and values for every change. Threads: the activity's.
#pragma once

#include <map>
#include <memory>
#include <string>

#include <Kiv/Entity.h>
#include <Story/Observer.h>

namespace StateDatabase {

class ChangeWatch final : public Kiv::Reactor {
 public:
   // `path` is the entity's; the observer must outlive the watch.
   ChangeWatch( std::string path, Quelm::Ptr< Kiv::Entity const > const & entity,
                Story::Observer & observer );

 private:
   using Member = std::pair< Kiv::AttributeId, std::string >;  // attribute and key

   void onAttribute( Kiv::Change const & change ) override;
   void membersAre( Kiv::AttributeId id );
   void memberIs( Kiv::AttributeId id, std::string const & key );

   std::string path_;
   Story::Observer & observer_;
   std::map< Member, std::unique_ptr< ChangeWatch > > members_;
};

}  // namespace StateDatabase
