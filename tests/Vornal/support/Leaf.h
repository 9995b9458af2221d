// leaf1: the agent of a switch's slice 3, with all that the EVPN plug-in meets when it starts. The
// state database is the agent's own. Everything is published and empty, the plug-in's mounter is
// built, layer 2 is not ready yet.
//
// What the plug-in asks the agent for is written down in `journal`, what it traces in `traces` as
// "HANDLE LEVEL TEXT", what it logs in `logs`.
#pragma once

#include <algorithm>
#include <string>

#include <Kiv/Activity.h>
#include <Log/Log.h>
#include <StateDatabase/MountSession.h>
#include <StateDatabase/SharedEntities.h>
#include <Trace/Trace.h>
#include <VornalEvpnMounter/VornalEvpnMounter.h>

#include "../../hardware-access/ScriptedSdk.h"
#include "Journal.h"
#include "Tcam.h"

namespace Support {

inline std::string const evpnStatusPath = "evpn/status";
inline std::string const vpIndexStatusPath = "hardware/vornal/vp/status/vornalL3";
inline std::string const vxlanCapabilitiesPath = "hardware/vornal/centralStatus/vxlanCapabilities";
inline std::string const classIdConfigPath = "hardware/vornal/i2eclassid/config/slice/3";
inline std::string const classIdStatusPath = "hardware/vornal/i2eclassid/status/slice/3";
inline std::string const vtiStatusPath = "interface/status/eth/vxlan";
inline std::string const lagConfigPath = "lag/config";
inline std::string const hwCapabilitiesPath = "bridging/hwcapabilities";

class Leaf {
 public:
   Leaf() {
      Trace::sinkIs( [ this ]( Trace::Line const & line ) {
         traces.push_back( std::string( line.handle ) + " " + std::to_string( line.level ) + " " +
                           std::string( line.text ) );
      } );
      Log::sinkIs( [ this ]( Log::Message const & message ) { logs.push_back( message.line ); } );
      publishNew< Evpn::EvpnStatus >( evpnStatusPath );
      publishNew< VornalCentral::VpIndexStatus >( vpIndexStatusPath );
      publishNew< VornalCentral::VxlanCapabilities >( vxlanCapabilitiesPath );
      publishNew< VornalCentral::I2EClassIdIndexConfig >( classIdConfigPath );
      publishNew< VornalCentral::I2EClassIdIndexStatus >( classIdStatusPath );
      publishNew< Vxlan::VtiStatusDir >( vtiStatusPath );
      publishNew< Lag::Config >( lagConfigPath );
      publishNew< Bridging::HwCapabilities >( hwCapabilitiesPath );
      shareCommonData();
      shareTcam();
      mounter = mounterNew();
   }
   Leaf( Leaf const & ) = delete;
   Leaf & operator=( Leaf const & ) = delete;
   ~Leaf() {
      mounter = nullptr;
      Trace::sinkIs( {} );
      Log::sinkIs( {} );
   }

   // One more mounter of this agent.
   Quelm::Ptr< Vornal::VornalEvpnMounter > mounterNew() {
      auto const built = Quelm::make< Vornal::VornalEvpnMounter >( "Vornal::VornalEvpnMounter" );
      built->sliceIdIs( "3" );
      built->entityManagerIs( database );
      built->sharedEntitiesIs( Quelm::make< StateDatabase::SharedEntities >( shared, scribe ) );
      return built;
   }

   // A session of the state database that finds its entities in `directory`. It tells leaf1's
   // mounter when mounts are done.
   Quelm::Ptr< Corrum::EntityManager > sessionNew( StateDatabase::Directory const & directory,
                                                   Story::Observer & observer ) {
      return Quelm::make< StateDatabase::MountSession >( StateDatabase::SessionContext{
         "Vornal::VornalEvpnMounter", directory, activity, observer,
         [ this ]( Corrum::MountStatus status ) {
            mounter->doMountsComplete( status, mounter->entityManager() );
         } } );
   }

   // Puts an entity, or nothing, into the place of the published one.
   void publish( std::string const & path, Quelm::Ptr< Kiv::Entity > const & entity ) {
      put( published, path, entity );
   }
   // The same for an entity that the agent shares by name.
   void share( std::string const & name, Quelm::Ptr< Kiv::Entity > const & entity ) {
      put( shared, StateDatabase::SharedEntities::kFolder + name, entity );
   }
   void withdrawAll() {
      shared = {};
      published = {};
   }

   template< typename T > Quelm::Ptr< T > at( std::string const & path ) const {
      return Quelm::dynamicCast< T >( published.entity( path ) );
   }
   Quelm::Ptr< Vornal::VornalCommonSmData > common() const {
      return sharedAs< Vornal::VornalCommonSmData >( "vornalCommon" );
   }
   Quelm::Ptr< GroupManager > groups() const { return sharedAs< GroupManager >( "tcamManager" ); }
   Quelm::Ptr< Vornal::VornalSliceDependencyPoints > points() const {
      return common()->sliceDependencyPoints();
   }
   Quelm::Ptr< Vornal::SubAgentDependencyPoints > subAgents() const {
      return points()->subAgentDependencyPoints();
   }

   void i2eClassIdSupportedIs( bool isSupported ) {
      at< VornalCentral::VxlanCapabilities >( vxlanCapabilitiesPath )
         ->i2eClassIdSupportedIs( isSupported );
   }
   // Lets the turns run that are queued.
   void run() {
      Kiv::ActivityUnlockAnchor const unlocked;
      activity.run();
   }
   void mountsComplete() { mounter->doMountsComplete( Corrum::MountStatus::Complete, database ); }
   void layerTwoIsReady() { subAgents()->readyIs( "l2Ready" ); }

   // Ethernet1, which is port 5 of unit 0, is on a segment that leaf1 shares with the
   // VTEP 10.0.0.2.
   void shareSegmentWithVtep() {
      auto const intfId = Pelk::IntfId::fromString( "Ethernet1" );
      auto const tepIp = Quelm::fromText< Pelk::IpGenAddr >( "10.0.0.2" );
      common()->vornalModIdIs( 0, 40 );
      common()->intfPortIs( intfId, VornalTypes::VornalPort( 0, 5, 40 ) );
      at< Evpn::EvpnStatus >( evpnStatusPath )->segmentStatusIs( intfId )->remoteTepIs( tepIp );
      at< VornalCentral::VpIndexStatus >( vpIndexStatusPath )
         ->remoteVportIs( VornalCentral::getRemoteVtepKeyForIp( tepIp ), 0x10005 );
   }

   // How often the plug-in has been initialised: finishInit() asks for the TCAM groups once.
   std::ptrdiff_t initialisations() const {
      return std::count( journal.begin(), journal.end(), "shared tcamManager" );
   }

   Journal journal;
   Journal traces;
   Journal logs;
   ScriptedSdk sdk;
   Kiv::ActivityManager activity;
   Kiv::ActivityLockAnchor locked{ activity };
   StateDatabase::Directory published;
   StateDatabase::Directory shared;
   Scribe scribe{ journal };
   Quelm::Ptr< Corrum::EntityManager > database = sessionNew( published, scribe );
   Quelm::Ptr< Vornal::VornalEvpnMounter > mounter;

 private:
   static void put( StateDatabase::Directory & directory, std::string const & path,
                    Quelm::Ptr< Kiv::Entity > const & entity ) {
      directory.entityDel( path );
      if ( entity ) {
         directory.entityIs( path, entity );
      }
   }
   template< typename T > void publishNew( std::string const & path ) {
      publish( path, Quelm::make< T >( path ) );
   }
   template< typename T > Quelm::Ptr< T > sharedAs( std::string const & name ) const {
      return Quelm::dynamicCast< T >(
         shared.entity( StateDatabase::SharedEntities::kFolder + name ) );
   }
   void shareCommonData() {
      auto const data = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
      data->sliceDependencyPointsIs( Quelm::make< Vornal::VornalSliceDependencyPoints >() );
      data->sliceDependencyPoints()->subAgentDependencyPointsIs(
         Quelm::make< Vornal::SubAgentDependencyPoints >( "subagents" ) );
      share( "vornalCommon", data );
   }
   void shareTcam() {
      auto const managers = Quelm::make< GroupManager >( journal );
      managers->entryManagerIs(
         Quelm::make< EntryManager >( Vornal::kIfpLocalBiasGroup, journal ) );
      managers->entryManagerIs(
         Quelm::make< EntryManager >( Vornal::kEfpLocalBiasGroup, journal ) );
      share( "tcamManager", managers );
   }
};

// Writes "set ATTRIBUTE" whenever an attribute of the mounter is set. Keeps the mounter alive.
class AttributeDiary {
 public:
   AttributeDiary( Journal & journal, Quelm::Ptr< Vornal::VornalEvpnMounter > const & mounter )
         : watch_( mounter, [ &journal ]( Kiv::Change const & change ) {
              journal.push_back(
                 "set " + change.entity().typeData().attribute( change.attribute() ).name() );
           } ) {
      watch_.hasNotificationActiveIs( true );
   }

 private:
   Kiv::Watch< Vornal::VornalEvpnMounter > watch_;
};

}  // namespace Support
