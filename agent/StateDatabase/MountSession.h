// A mounter's view of the state database: the agent's side of Corrum/Mount.h.
//
// - A mount group is performed in an activity turn of its own, after the turn that closed it. A
//   group that was closed with an empty name then tells the mounter; one that was closed with a
//   name tells nobody.
// - A path without an entity counts as mounted: it is empty, and stays empty. A mount fails for an
//   entity of another type at the path, and for flags that begin with neither 'r' nor 'w'. The
//   group's status is complete when no mount failed, failed when all failed, partial otherwise.
// - Mounting gives no rights. An entity can be looked up at any path, mounted or not, by its actual
//   type; the agent's own code publishes some that no plug-in mounts.
//
// A closed group is finished: mounting more, or closing it again, throws Quelm::AccessError.
//
// The observer is told every mount, its outcome and every look-up. The directory, the activity and
// the observer must outlive the session and its groups. Threads: the activity's.
#pragma once

#include <functional>
#include <string>

#include <Corrum/Mount.h>
#include <Kiv/Activity.h>
#include <StateDatabase/Directory.h>
#include <Story/Observer.h>

namespace StateDatabase {

// The objects that a session works with.
struct SessionContext {
   std::string mounter;  // its name
   Directory const & directory;
   Kiv::ActivityManager & activity;
   Story::Observer & observer;
   std::function< void( Corrum::MountStatus ) > mountsDone;  // tells the mounter
};

class MountSession final : public Corrum::EntityManager {
 public:
   explicit MountSession( SessionContext context ) : context_( std::move( context ) ) {}

   Quelm::Ptr< Corrum::MountGroup > getMountGroup() override;
   Quelm::Ptr< Kiv::Entity > getEntity( std::string const & path ) const override;

 private:
   SessionContext context_;
};

}  // namespace StateDatabase
