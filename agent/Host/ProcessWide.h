// Puts in place the objects that a process has once: the shim, the sinks of trace and log, the
// trace ring, the feature toggles. They stay in place for the lifetime of this object.
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
   // All of them must outlive this object. The observer gets the lines that are traced and logged.
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
