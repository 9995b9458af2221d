// The real VornalEvpn.so is opened and closed: opening it brings the plug-in's types, log messages,
// trace handles and mounter into the process, and closing it takes all of them out again.
#include <gtest/gtest.h>

#include <dlfcn.h>

#include <string>
#include <vector>

#include <Kiv/Activity.h>
#include <Kiv/Type.h>
#include <Log/Log.h>
#include <Plugin/Mounter.h>
#include <Shim/FieldCall.h>
#include <Trace/Trace.h>
#include <Vornal/VornalCommonSmData.h>
#include <VornalCentral/Capabilities.h>
#include <VornalLib/MounterBase.h>

#include <PlugInFile.h>

namespace OpeningTest {

using Names = std::vector< std::string >;

Names typeNames() {
   Names names;
   for ( Kiv::Type const * const type : Kiv::types() ) {
      names.push_back( type->name() );
   }
   return names;
}

Names logNames() {
   Names names;
   for ( Log::Descriptor const * const descriptor : Log::descriptors() ) {
      names.push_back( descriptor->name );
   }
   return names;
}

Names mounterNames() {
   Names names;
   for ( Plugin::MounterRegistration const * const registration : Plugin::registeredMounters() ) {
      names.push_back( registration->name() );
   }
   return names;
}

// The plug-in, open as long as this object lives, as the agent opens it.
class Opened {
 public:
   Opened() : handle_( dlopen( plugInFile(), RTLD_NOW | RTLD_LOCAL ) ) {
      EXPECT_TRUE( handle_ ) << dlerror();
   }
   Opened( Opened const & ) = delete;
   Opened & operator=( Opened const & ) = delete;
   ~Opened() {
      if ( handle_ ) {
         dlclose( handle_ );
      }
   }

 private:
   void * handle_;
};

bool isLoaded() {
   void * const handle = dlopen( plugInFile(), RTLD_NOW | RTLD_NOLOAD );
   if ( handle ) {
      dlclose( handle );
   }
   return handle != nullptr;
}

TEST( PlugIn, OffersItsMounterWhenItIsOpened ) {
   EXPECT_EQ( mounterNames(), Names{} );
   Opened const plugIn;
   ASSERT_EQ( mounterNames(), Names{ "Vornal::VornalEvpnMounter" } );
   auto const mounter = Plugin::registeredMounters().front()->mounterNew();
   EXPECT_EQ( mounter->typeData().name(), "Vornal::VornalEvpnMounter" );
   EXPECT_EQ( mounter->typeData().attributes().size(), 16U );
}

TEST( PlugIn, BringsItsEntityTypes ) {
   for ( char const * const name :
         { "Vornal::VornalEvpnMounter", "Vornal::EvpnDependencyWaiter",
           "Vornal::EvpnMultihomingLocalBiasSm", "Vornal::EvpnMultihomingLocalBiasWithEgressMaskSm",
           "Vornal::EvpnMultihomingLocalBiasWithI2EClassIdSm" } ) {
      EXPECT_EQ( Kiv::typeNamed( name ), nullptr ) << name;
      Opened const plugIn;
      EXPECT_NE( Kiv::typeNamed( name ), nullptr ) << name;
   }
}

TEST( PlugIn, BringsItsValueTypesWithTheirAttributes ) {
   struct ValueType {
      char const * name;
      Names attributes;
   };
   for ( ValueType const & expected :
         { ValueType{ "Vornal::SharedESPortInfo", { "sharedPortBitmap", "sharedPortList" } },
           ValueType{ "Vornal::PortListsOnUpdate", { "portList", "prevPortList" } } } ) {
      EXPECT_EQ( Kiv::typeNamed( expected.name ), nullptr ) << expected.name;
      Opened const plugIn;
      Kiv::Type const * const type = Kiv::typeNamed( expected.name );
      ASSERT_NE( type, nullptr ) << expected.name;
      Names attributes;
      for ( Kiv::Attribute const * const attribute : type->attributes() ) {
         attributes.push_back( attribute->name() );
      }
      EXPECT_EQ( attributes, expected.attributes );
   }
}

TEST( PlugIn, BringsItsLogMessages ) {
   EXPECT_EQ( logNames(), Names{} );
   Opened const plugIn;
   EXPECT_EQ( logNames(),
              ( Names{ "MULTIHOMING_TCAM_RESOURCE_RECOVERED", "MULTIHOMING_TCAM_RESOURCE_FULL",
                       "VORNAL_UNEXPECTED_RESTART", "VORNAL_CONFIG_CHANGE" } ) );
}

TEST( PlugIn, TracesThroughAHandleThatFollowsLevelsSetBeforeAndAfterItsOpening ) {
   Names traced;
   Trace::sinkIs( [ & ]( Trace::Line const & line ) { traced.emplace_back( line.handle ); } );
   Trace::levelsIs( "VornalEvpn*", "8" );
   {
      Opened const plugIn;
      Plugin::registeredMounters().front()->mounterNew();
      EXPECT_EQ( traced, Names{ "VornalEvpnMounter" } );
      Trace::levelsIs( "VornalEvpn*", "" );
      Plugin::registeredMounters().front()->mounterNew();
   }
   EXPECT_EQ( traced.size(), 1U );
   Trace::levelsIs( "VornalEvpn*", "8" );  // reaches no handle that has gone
   Trace::sinkIs( {} );
}

TEST( PlugIn, LeavesTheHandleThatTracesTheChipToTheAgent ) {
   Names traced;
   Trace::sinkIs( [ & ]( Trace::Line const & line ) { traced.emplace_back( line.handle ); } );
   { Opened const plugIn; }
   Shim::apiTrace().line( 4, "the agent's own field call" );
   EXPECT_EQ( traced, Names{ "ApiVornal" } );
   Trace::sinkIs( {} );
}

TEST( PlugIn, LeavesNothingBehindWhenItIsClosed ) {
   Names const before = typeNames();
   { Opened const plugIn; }
   EXPECT_FALSE( isLoaded() );
   EXPECT_EQ( typeNames(), before );
   EXPECT_EQ( logNames(), Names{} );
   EXPECT_EQ( mounterNames(), Names{} );
}

TEST( PlugIn, CanBeOpenedAgain ) {
   Names firstTypes;
   {
      Opened const plugIn;
      firstTypes = typeNames();
   }
   Opened const plugIn;
   EXPECT_EQ( typeNames(), firstTypes );
   EXPECT_EQ( logNames().size(), 4U );
   EXPECT_EQ( mounterNames().size(), 1U );
}

// --- The start

// The agent's shared entities: what the plug-in cannot start without, and nothing else.
class Shared final : public VornalLib::SharedEntities {
 public:
   explicit Shared( Quelm::Ptr< Vornal::VornalCommonSmData > const & common ) : common_( common ) {}
   Quelm::Ptr< Kiv::Entity > entity( std::string const & name ) override {
      return name == "vornalCommon" ? Quelm::Ptr< Kiv::Entity >( common_ ) : nullptr;
   }

 private:
   Quelm::Ptr< Vornal::VornalCommonSmData > common_;
};

// A state database in which nothing is published but what the chip can do.
class Database final : public Corrum::EntityManager {
 public:
   Quelm::Ptr< Corrum::MountGroup > getMountGroup() override { return nullptr; }
   Quelm::Ptr< Kiv::Entity > getEntity( std::string const & path ) const override {
      return path.ends_with( "vxlanCapabilities" )
                ? Quelm::Ptr< Kiv::Entity >(
                     Quelm::make< VornalCentral::VxlanCapabilities >( "vxlanCapabilities" ) )
                : nullptr;
   }
};

// Starts the plug-in that is open; layer 2 is ready. Whether it marks its point.
bool hasStarted() {
   auto const common = Quelm::make< Vornal::VornalCommonSmData >( "vornalCommon" );
   common->sliceDependencyPointsIs( Quelm::make< Vornal::VornalSliceDependencyPoints >() );
   auto const subAgents = Quelm::make< Vornal::SubAgentDependencyPoints >( "subagents" );
   subAgents->readyIs( "l2Ready" );
   common->sliceDependencyPoints()->subAgentDependencyPointsIs( subAgents );
   auto const mounter = Quelm::dynamicCast< VornalLib::MounterBase >(
      Plugin::registeredMounters().front()->mounterNew() );
   mounter->sharedEntitiesIs( Quelm::make< Shared >( common ) );
   mounter->doMountsComplete( Corrum::MountStatus::Complete, Quelm::make< Database >() );
   return common->sliceDependencyPoints()->isReady( "evpn" );
}

TEST( PlugIn, StartsOnceFromOneOpeningAndAgainFromTheNext ) {
   Trace::sinkIs( []( Trace::Line const & ) {} );
   Kiv::ActivityManager activity;
   {
      Opened const plugIn;
      EXPECT_TRUE( hasStarted() );
      EXPECT_FALSE( hasStarted() );
   }
   Opened const plugIn;
   EXPECT_TRUE( hasStarted() );
   Trace::sinkIs( {} );
}

}  // namespace OpeningTest
