// What a process has one of, and the agent provides: the shim, the sinks of trace and log, the
// trace ring, the feature toggles. In place as long as this object lives.
#pragma once

#include <FeatureToggle/FeatureToggle.h>
#include <Log/Log.h>
#include <Shim/Shim.h>
#include <Story/Observer.h>
#include <Trace/Ring.h>
#include <Trace/Trace.h>

namespace Host {

class ProcessWide {
 public:
   // All of them must outlive this object. Lines that are traced and logged go to the observer.
   ProcessWide( Shim::Sdk & sdk, Trace::Ring & ring, FeatureToggle::Facility & toggles,
                Story::Observer & observer ) {
      Shim::sdk_ = &sdk;
      Trace::ringIs( &ring );
      FeatureToggle::facilityIs( &toggles );
      Trace::sinkIs( [ &observer ]( Trace::Line const & line ) {
         observer.onEvent(
            Story::Traced{ std::string( line.handle ), line.level, std::string( line.text ) } );
      } );
      Log::sinkIs( [ &observer ]( Log::Message const & message ) {
         observer.onEvent( Story::Logged{ message.descriptor.name, message.line } );
      } );
   }
   ProcessWide( ProcessWide const & ) = delete;
   ProcessWide & operator=( ProcessWide const & ) = delete;
   ~ProcessWide() {
      Log::sinkIs( {} );
      Trace::sinkIs( {} );
      FeatureToggle::facilityIs( nullptr );
      Trace::ringIs( nullptr );
      Shim::sdk_ = nullptr;
   }
};

}  // namespace Host
