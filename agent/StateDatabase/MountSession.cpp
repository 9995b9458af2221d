#include <StateDatabase/MountSession.h>

#include <vector>

#include <Quelm/Error.h>
#include <StateDatabase/TypeName.h>

namespace StateDatabase {

namespace {

class Group final : public Corrum::MountGroup {
 public:
   // The session stays alive as long as its groups.
   Group( Quelm::Ptr< MountSession > session, SessionContext const & context )
         : session_( std::move( session ) ), context_( context ) {}

   void doMount( Corrum::Mount const & mount ) override {
      checkOpen();
      context_.observer.onEvent( Story::MountAsked{ mount.path, mount.type, mount.flags } );
      mounts_.push_back( mount );
   }

   void doClose( std::string const & name ) override {
      checkOpen();
      isClosed_ = true;
      context_.activity.turnNew( [ group = Quelm::Ptr< Group >( this ), isToTell = name.empty() ] {
         Corrum::MountStatus const status = group->perform();
         if ( isToTell ) {
            group->context_.mountsDone( status );
         }
      } );
   }

 private:
   void checkOpen() const {
      if ( isClosed_ ) {
         throw Quelm::AccessError( "the mount group has been closed already" );
      }
   }

   Corrum::MountStatus perform() const;
   std::string problemOf( Corrum::Mount const & mount ) const;

   Quelm::Ptr< MountSession > session_;
   SessionContext const & context_;
   std::vector< Corrum::Mount > mounts_;
   bool isClosed_ = false;
};

std::string Group::problemOf( Corrum::Mount const & mount ) const {
   if ( !mount.flags.starts_with( 'r' ) && !mount.flags.starts_with( 'w' ) ) {
      return mount.path + ": the flags \"" + mount.flags + "\" begin with neither 'r' nor 'w'";
   }
   auto const entity = context_.directory.entity( mount.path );
   if ( entity && !isOfType( *entity, mount.type ) ) {
      return mount.path + " is " + withArticle( entity->typeData().name() ) + ", not " +
             withArticle( mount.type );
   }
   return {};
}

Corrum::MountStatus Group::perform() const {
   Story::MountsDone done{ context_.mounter, "complete", {} };
   for ( Corrum::Mount const & mount : mounts_ ) {
      if ( std::string const problem = problemOf( mount ); !problem.empty() ) {
         done.problems.push_back( problem );
      }
   }
   Corrum::MountStatus status = Corrum::MountStatus::Complete;
   if ( !done.problems.empty() ) {
      bool const isAnyMounted = done.problems.size() < mounts_.size();
      status = isAnyMounted ? Corrum::MountStatus::Partial : Corrum::MountStatus::Failed;
      done.status = isAnyMounted ? "partial" : "failed";
   }
   context_.observer.onEvent( done );
   return status;
}

}  // namespace

Quelm::Ptr< Corrum::MountGroup > MountSession::getMountGroup() {
   return Quelm::make< Group >( Quelm::Ptr< MountSession >( this ), context_ );
}

Quelm::Ptr< Kiv::Entity > MountSession::getEntity( std::string const & path ) const {
   auto entity = context_.directory.entity( path );
   context_.observer.onEvent(
      Story::EntityLookedUp{ path, entity ? entity->typeData().name() : std::string() } );
   return entity;
}

}  // namespace StateDatabase
