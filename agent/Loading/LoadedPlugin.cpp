#include <Loading/LoadedPlugin.h>

#include <Audit/Variant.h>
#include <StateDatabase/MountSession.h>
#include <StateDatabase/SharedEntities.h>

namespace Loading {

namespace {

constexpr char const * kFolder = "plugins/";

}  // namespace

LoadedPlugin::LoadedPlugin( std::filesystem::path const & file, std::string const & sliceId,
                            Surroundings const & around )
      : around_( around ),
        module_( file ),
        pointWatch_( around.pluginPoint, [ this ]( Kiv::Change const & change ) {
           tellVariant();
           if ( *change.newValue< bool >() ) {
              around_.observer.onEvent(
                 Story::DependencyPointReady{ around_.pluginPoint->name(), true } );
           }
        } ) {
   pointWatch_.hasNotificationActiveIs( true );
   Story::PluginLoaded loaded{ file.string(), {} };
   for ( Plugin::MounterRegistration const * const registration : module_.mounters() ) {
      loaded.mounters.push_back( registration->name() );
   }
   around_.observer.onEvent( loaded );
   for ( Plugin::MounterRegistration const * const registration : module_.mounters() ) {
      mounterNew( *registration, sliceId );
   }
}

LoadedPlugin::~LoadedPlugin() {
   while ( !mounters_.empty() ) {
      around_.agentEntities.entityDel( kFolder + mounters_.back()->name() );
      mounters_.pop_back();
   }
}

void LoadedPlugin::mounterNew( Plugin::MounterRegistration const & registration,
                               std::string const & sliceId ) {
   auto const mounter = registration.mounterNew();
   mounter->sliceIdIs( sliceId );
   // The mounter owns the session, so the session refers back to it without counting.
   mounter->entityManagerIs( Quelm::make< StateDatabase::MountSession >(
      StateDatabase::SessionContext{ mounter->name(), around_.database, around_.activity,
                                     around_.observer,
                                     [ self = mounter.get() ]( Corrum::MountStatus status ) {
                                        self->doMountsComplete( status, self->entityManager() );
                                     } } ) );
   if ( auto const base = Quelm::dynamicCast< VornalLib::MounterBase >( mounter ) ) {
      base->sharedEntitiesIs(
         Quelm::make< StateDatabase::SharedEntities >( around_.agentEntities, around_.observer ) );
   }
   around_.agentEntities.entityIs( kFolder + mounter->name(), mounter );
   mounters_.push_back( mounter );
}

void LoadedPlugin::start() {
   for ( auto const & mounter : mounters_ ) {
      around_.activity.turnNew( [ mounter ] { mounter->doInit(); } );
   }
}

void LoadedPlugin::tellVariant() {
   for ( auto const & mounter : mounters_ ) {
      auto const * const attribute = mounter->typeData().find( "evpnMultihomingLocalBiasSm" );
      auto const machine = attribute ? attribute->entity( *mounter, {} ) : nullptr;
      if ( machine && !isVariantTold_ ) {
         isVariantTold_ = true;
         std::string const & type = machine->typeData().name();
         around_.observer.onEvent(
            Story::VariantChosen{ std::string( Audit::wordForStateMachine( type ) ), type } );
      }
   }
}

}  // namespace Loading
