// One run of the agent, in the test's own process.
#pragma once

#include <algorithm>

#include <gtest/gtest.h>

#include <Host/Agent.h>
#include <Process/RingMemory.h>
#include <Steps/Reader.h>
#include <Support.h>
#include <Switches.h>

// Runs a scenario with the sample plug-in, in this process.
class AgentRun : public testing::Test {
 protected:
   void run( std::string const & steps, std::string const & tcam = "{ ingress: 8 }",
             Host::AgentConfig config = {} ) {
      scenario = Steps::readScenarioText( Switches::leaf( steps, tcam ), "leaf.yaml" );
      config.scenario = "leaf.yaml";
      if ( config.plugin.empty() ) {
         config.plugin = Support::testPlugin( "segment-rules" );
      }
      Host::Agent( scenario, config, ring.bytes(), story ).run();
   }

   // Runs a whole scenario with the plug-in that ships.
   void runText( std::string const & text ) {
      scenario = Steps::readScenarioText( text, "scenario.yaml" );
      Host::AgentConfig config;
      config.scenario = "scenario.yaml";
      config.plugin = Support::plugin();
      Host::Agent( scenario, config, ring.bytes(), story ).run();
   }

   // The events of one kind that belong to a step.
   template< typename T > std::vector< T > inStep( U32 number ) const {
      std::vector< T > result;
      U32 step = 0;
      for ( Story::Event const & event : story.events() ) {
         if ( auto const * const begins = std::get_if< Story::StepBegins >( &event ) ) {
            step = begins->number;
         } else if ( auto const * const one = std::get_if< T >( &event ); one && step == number ) {
            result.push_back( *one );
         }
      }
      return result;
   }

   std::vector< std::string > operationsIn( U32 step ) const {
      std::vector< std::string > result;
      for ( Story::CallMade const & made : inStep< Story::CallMade >( step ) ) {
         result.push_back( made.call.operation );
      }
      return result;
   }

   std::string badInput() const { return story.all< Story::BadInput >().at( 0 ).text; }

   std::vector< bool > held() const {
      std::vector< bool > result;
      for ( auto const & expectation : story.all< Story::ExpectationChecked >() ) {
         result.push_back( expectation.held );
      }
      return result;
   }

   std::size_t failedExpectations() const {
      auto const all = held();
      return static_cast< std::size_t >( std::count( all.begin(), all.end(), false ) );
   }

   Process::RingMemory ring;
   Support::Recorder story;
   Scenario::Model scenario;
};
