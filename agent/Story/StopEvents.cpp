#include <Story/StopEvents.h>

#include <algorithm>
#include <array>

namespace Story {

namespace {

struct EventOfAttribute {
   std::string_view attribute;
   char const * event;
};

// The events of docs/limits.md, by the attribute that changes.
constexpr std::array kEvents{ EventOfAttribute{ "segmentStatus", "segment" },
                              EventOfAttribute{ "remoteTep", "segment" },
                              EventOfAttribute{ "remoteVport", "virtual port" },
                              EventOfAttribute{ "remoteESPeerVtep", "class id" },
                              EventOfAttribute{ "vtiStatus", "VNI" },
                              EventOfAttribute{ "vrfToVniMap", "VNI" },
                              EventOfAttribute{ "vornalIntfToPort", "port" },
                              EventOfAttribute{ "phyIntf", "port channel" },
                              EventOfAttribute{ "lag", "port channel" },
                              EventOfAttribute{ "exhausted", "room" } };

constexpr char const * kStart = "start";
constexpr char const * kVerification = "verification";

}  // namespace

void StopEvents::onEvent( Event const & event ) {
   std::visit( Overloaded{
                  [ & ]( StepBegins const & step ) { begin( step ); },
                  [ & ]( VariantChosen const & chosen ) { cause_.variant = chosen.variant; },
                  [ & ]( PublishedChange const & change ) {
                     auto const * const found =
                        std::find_if( kEvents.begin(), kEvents.end(), [ & ]( auto const & one ) {
                           return one.attribute == change.attribute;
                        } );
                     if ( found != kEvents.end() ) {
                        cause_.events.insert( found->event );
                     }
                  },
                  [ & ]( DependencyPointReady const & ready ) {
                     if ( !ready.isOfPlugin ) {
                        cause_.events.insert( kStart );
                     }
                  },
                  [ & ]( PluginPass const & pass ) { take( pass ); }, []( auto const & ) {} },
               event );
}

// A scenario can also request a pass by calling the operation.
void StopEvents::begin( StepBegins const & step ) {
   cause_.events.clear();
   if ( step.text.find( "handleVerify()" ) != std::string::npos ) {
      cause_.events.insert( kVerification );
   }
}

void StopEvents::take( PluginPass const & pass ) {
   if ( pass.state == PluginPass::State::Begins ) {
      cause_.events.insert( kVerification );
   } else {
      cause_.events.erase( kVerification );
   }
}

}  // namespace Story
