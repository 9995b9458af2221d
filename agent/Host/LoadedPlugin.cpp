#include <Host/LoadedPlugin.h>

#include <Host/SharedState.h>
#include <StateDatabase/MountSession.h>

namespace Host {

namespace {

constexpr char const * kFolder = "plugins/";

// The variants by the type of the state machine that a mounter holds.
std::string variantOf( std::string const & type ) {
   if ( type.ends_with( "WithEgressMaskSm" ) ) {
      return "egress-mask";
   }
   return type.ends_with( "WithI2EClassIdSm" ) ? "class-id" : type;
}

}  // namespace

LoadedPlugin::LoadedPlugin( std::filesystem::path const & file, std::string const & sliceId,
                            Environment & environment )
      : environment_( environment ),
        module_( file ),
        pointWatch_( environment.pluginPoint(), [ this ]( Kiv::Change const & change ) {
           tellVariant();
           if ( *change.newValue< bool >() ) {
              environment_.observer().onEvent(
                 Story::DependencyPointReady{ environment_.pluginPoint()->name(), true } );
           }
        } ) {
   pointWatch_.hasNotificationActiveIs( true );
   Story::PluginLoaded loaded{ file.string(), {} };
   for ( Plugin::MounterRegistration const * const registration : module_.mounters() ) {
      loaded.mounters.push_back( registration->name() );
   }
   environment_.observer().onEvent( loaded );
   for ( Plugin::MounterRegistration const * const registration : module_.mounters() ) {
      mounterNew( *registration, sliceId );
   }
}

LoadedPlugin::~LoadedPlugin() {
   while ( !mounters_.empty() ) {
      environment_.own().entityDel( kFolder + mounters_.back()->name() );
      mounters_.pop_back();
   }
}

void LoadedPlugin::mounterNew( Plugin::MounterRegistration const & registration,
                               std::string const & sliceId ) {
   auto const mounter = registration.mounterNew();
   mounter->sliceIdIs( sliceId );
   // The session is the mounter's own, so it refers back to it without counting.
   mounter->entityManagerIs( Quelm::make< StateDatabase::MountSession >(
      StateDatabase::SessionContext{ mounter->name(), environment_.database(),
                                     environment_.activity(), environment_.observer(),
                                     [ self = mounter.get() ]( Corrum::MountStatus status ) {
                                        self->doMountsComplete( status, self->entityManager() );
                                     } } ) );
   if ( auto const base = Quelm::dynamicCast< VornalLib::MounterBase >( mounter ) ) {
      base->sharedEntitiesIs(
         Quelm::make< SharedEntities >( environment_.own(), environment_.observer() ) );
   }
   environment_.own().entityIs( kFolder + mounter->name(), mounter );
   mounters_.push_back( mounter );
}

void LoadedPlugin::start() {
   for ( auto const & mounter : mounters_ ) {
      environment_.activity().turnNew( [ mounter ] { mounter->doInit(); } );
   }
}

void LoadedPlugin::tellVariant() {
   for ( auto const & mounter : mounters_ ) {
      auto const * const attribute = mounter->typeData().find( "evpnMultihomingLocalBiasSm" );
      auto const machine = attribute ? attribute->entity( *mounter, {} ) : nullptr;
      if ( machine && !isVariantTold_ ) {
         isVariantTold_ = true;
         std::string const & type = machine->typeData().name();
         environment_.observer().onEvent( Story::VariantChosen{ variantOf( type ), type } );
      }
   }
}

}  // namespace Host
