// The state database as a plug-in sees it: mounting paths, and finding what is mounted.
//
// A plug-in opens a mount group, adds the paths it wants, and closes the group. Closing it with an
// empty name asks the agent to perform the mounts and to call the mounter's doMountsComplete() when
// they are done, with the outcome and the manager from which the entities can be taken.
//
// The agent implements these interfaces. A path without an entity is not an error: getEntity()
// returns an empty reference for it.
#pragma once

#include <string>

#include <Kiv/Entity.h>

namespace Corrum {

// One path to mount.
struct Mount {
   std::string path;
   std::string type;   // of the entity, "Namespace::Class"
   std::string flags;  // "r": read, "w": write; passed on as given
};

// How the mounts of a group went.
enum class MountStatus {
   Complete,  // every path is mounted
   Partial,   // some are not
   Failed,    // none is
};

class MountGroup : public Quelm::Counted {
 public:
   virtual void doMount( Mount const & mount ) = 0;
   virtual void doClose( std::string const & name ) = 0;
};

class EntityManager : public Quelm::Counted {
 public:
   // A new, empty group.
   virtual Quelm::Ptr< MountGroup > getMountGroup() = 0;
   // The entity at `path`, or an empty reference.
   virtual Quelm::Ptr< Kiv::Entity > getEntity( std::string const & path ) const = 0;
};

}  // namespace Corrum
