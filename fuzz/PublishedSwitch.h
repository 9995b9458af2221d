// A switch without a plug-in: the state that other agents publish, and the steps that change it.
#pragma once

#include <Host/Environment.h>
#include <Process/RingMemory.h>
#include <Questions/Table.h>
#include <Steps/Publish.h>
#include <Steps/Reader.h>
#include <Story/InputError.h>

namespace Fuzz {

class PublishedSwitch {
 public:
   // What the scenario publishes is there; its steps are not carried out. It must outlive this.
   explicit PublishedSwitch( Scenario::Model const & scenario )
         : environment_( scenario, ring_.bytes(), nobody_ ) {
      Steps::queuePublished( environment_.forSteps(), scenario.published );
      environment_.activity().run();
      environment_.activity().turnNew( [ this ] { environment_.published().allocator().start(); } );
      environment_.activity().run();
   }

   // Story::InputError when it cannot be carried out.
   void carryOut( Scenario::Action const & step, int line = 1 ) {
      step.queue( environment_.forSteps(), line );
      environment_.activity().run();
   }

   Story::Table state() const {
      return Questions::answer( *Questions::find( "state" ), environment_.forQuestions() );
   }
   StateDatabase::Finder const & finder() const { return environment_.finder(); }

 private:
   class Nobody final : public Story::Observer {
    public:
      void onEvent( Story::Event const & ) override {}
   };

   Process::RingMemory ring_;
   Nobody nobody_;
   Host::Environment environment_;
};

}  // namespace Fuzz
