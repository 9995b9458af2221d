// leaf1 with the plug-in that comes with the program, up and kept so, for tests that do something
// to it which a scenario has no word for, and audit it then.
#pragma once

#include <AuditRun.h>
#include <Host/Environment.h>
#include <Loading/LoadedPlugin.h>
#include <Steps/Publish.h>
#include <Steps/Verify.h>

class LiveSwitch {
 public:
   explicit LiveSwitch( Leaf const & leaf )
         : scenario_( Steps::readScenarioText( leaf.text( "   - ready: subagents::l2Ready\n" ),
                                               "leaf.yaml" ) ),
           environment_( scenario_, ring_.bytes(), story_ ) {
      Steps::queuePublished( environment_.forSteps(), scenario_.published );
      environment_.activity().run();
      environment_.activity().turnNew( [ this ] { environment_.published().allocator().start(); } );
      plugin_.emplace( Support::plugin(), "1", environment_.forPlugins() );
      plugin_->start();
      environment_.activity().run();
      take( scenario_.steps.at( 0 ).action );
   }

   void take( std::shared_ptr< Scenario::Action const > const & action ) {
      action->queue( environment_.forSteps(), 1 );
      environment_.activity().run();
   }

   Story::Audited audited() {
      story_.clear();
      Steps::queueVerification( environment_.forSteps(), Steps::Verify::How::audit );
      environment_.activity().run();
      return story_.all< Story::Audited >().at( 0 );
   }

   // What has happened since the switch came up, or was audited last.
   std::vector< Story::Event > const & events() const { return story_.events(); }

 private:
   Process::RingMemory ring_;
   Support::Recorder story_;
   Scenario::Model scenario_;
   Host::Environment environment_;
   std::optional< Loading::LoadedPlugin > plugin_;
};
