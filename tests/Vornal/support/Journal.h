// What a plug-in asks the agent for, as lines in the order of asking.
#pragma once

#include <string>
#include <variant>
#include <vector>

#include <Story/Observer.h>

namespace Support {

using Journal = std::vector< std::string >;

// Writes down what the agent's state database tells: "mount PATH TYPE FLAGS" and "mounts STATUS",
// "entity PATH", "shared NAME". It leaves other events out.
class Scribe final : public Story::Observer {
 public:
   explicit Scribe( Journal & journal ) : journal_( journal ) {}

   void onEvent( Story::Event const & event ) override {
      std::visit( [ this ]( auto const & one ) { write( one ); }, event );
   }

 private:
   void write( Story::MountAsked const & asked ) {
      journal_.push_back( "mount " + asked.path + " " + asked.type + " " + asked.flags );
   }
   void write( Story::MountsDone const & done ) { journal_.push_back( "mounts " + done.status ); }
   void write( Story::EntityLookedUp const & asked ) {
      journal_.push_back( "entity " + asked.path );
   }
   void write( Story::SharedEntityAsked const & asked ) {
      journal_.push_back( "shared " + asked.name );
   }
   template< typename Other > void write( Other const & ) {}

   Journal & journal_;
};

}  // namespace Support
