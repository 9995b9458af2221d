// Tells an observer every change of an entity, and of the entities in its collections.
//
// The watch follows each member of a collection from its entry until it leaves. Values that a
// member has at its entry are part of the entry and not told separately. A watch that is built
// before other subscribers tells a change before they act on it.
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
   // `path` is the entity's path; the observer must outlive the watch.
   ChangeWatch( std::string path, Quelm::Ptr< Kiv::Entity const > const & entity,
                Story::Observer & observer );

 private:
   using Member = std::pair< Kiv::AttributeId, std::string >;  // attribute and key

   void onAttribute( Kiv::Change const & change ) override;
   void watchMembers( Kiv::AttributeId id );
   void watchMember( Kiv::AttributeId id, std::string const & key );

   std::string path_;
   Story::Observer & observer_;
   std::map< Member, std::unique_ptr< ChangeWatch > > members_;
};

}  // namespace StateDatabase
