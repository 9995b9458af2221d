#include <Host/Agent.h>

#include <Host/Warnings.h>
#include <Quelm/Error.h>
#include <Replay/CallReplay.h>
#include <Scenario/ShownTraces.h>
#include <StateDatabase/Tree.h>
#include <Steps/Publish.h>
#include <Steps/Verify.h>
#include <Story/InputError.h>

namespace Host {

namespace {

void applyTraceLevels( std::vector< Scenario::TraceLevels > const & settings ) {
   for ( Scenario::TraceLevels const & setting : settings ) {
      Trace::levelsIs( setting.handles, setting.levels );
   }
}

}  // namespace

Agent::Agent( Scenario::Model const & scenario, AgentConfig config, std::span< std::byte > ring,
              Story::Observer & observer )
      : scenario_( scenario ),
        config_( std::move( config ) ),
        environment_( scenario, ring, observer ) {
   if ( config_.captures ) {
      environment_.traffic().captureInto( *config_.captures );
   }
   if ( auto const * const asked = std::get_if< Traffic::FrameAsked >( &config_.show ) ) {
      frameQuestion_.emplace( *asked, config_.lastStep.has_value(), environment_ );
   } else if ( config_.particulars ) {
      particulars_.emplace( *config_.particulars, environment_ );
   }
}

void Agent::run() {
   try {
      runAll();
   } catch ( Story::InputError const & error ) {
      plugin_.reset();
      environment_.observer().onEvent( Story::BadInput{ error.what() } );
   }
}

void Agent::runAll() {
   begin();
   std::visit( [ this ]( auto const & what ) { show( what ); }, config_.show );
   verify();
   inStep( { Story::StepKind::Teardown,
             0,
             "the plug-in is destroyed and unloaded; its rules stay in the chip",
             {} },
           [ this ] { tearDown(); } );
   environment_.observer().onEvent(
      Story::RunEnds{ static_cast< U64 >( environment_.activity().clock()->now().count() ) } );
}

void Agent::begin( Past const & past ) {
   environment_.observer().onEvent(
      Story::RunBegins{ config_.scenario, scenario_.name, scenario_.description,
                        static_cast< U32 >( scenario_.steps.size() ) } );
   Steps::queuePublished( environment_.forSteps(), scenario_.published );
   environment_.activity().run();
   Chip::CallReplay replay( environment_.forSteps().board.units() );
   for ( Chip::HardwareCall const & call : past.calls ) {
      replay.make( call );
   }
   environment_.activity().turnNew( [ this ] { environment_.published().allocator().start(); } );
   environment_.activity().run();
   repeat( past.steps, Scenario::AfterRestart::lasts );
   inStep( { Story::StepKind::StartUp, 0, "the plug-in is loaded and mounts its state", {} },
           [ this ] { startUp(); } );
   repeat( past.steps, Scenario::AfterRestart::repeated );
   carryOutSteps();
}

// A step about an entity of the process that was the agent before has nothing to work on.
void Agent::repeat( std::span< Scenario::Step const > steps, Scenario::AfterRestart kind ) {
   for ( Scenario::Step const & step : steps ) {
      if ( step.action->afterRestart() != kind ) {
         continue;
      }
      try {
         carryOut( step );
      } catch ( Story::InputError const & ) {
         continue;
      }
   }
}

// Runs the step's work, and the activity until it is idle.
template< typename Work >
void Agent::inStep( Story::StepBegins const & begins, Work const & work ) {
   Story::StepBegins numbered = begins;
   numbered.number = step_++;
   environment_.ring().stepIs( numbered.number );
   environment_.observer().onEvent( numbered );
   work();
   environment_.activity().run();
   if ( plugin_ ) {
      plugin_->tellVariant();
   }
   if ( particulars_ && plugin_ ) {
      particulars_->stepIsOver();
   }
   environment_.observer().onEvent( Story::StepEnds{ numbered.number } );
}

void Agent::startUp() {
   traceLevels();
   plugin_.emplace( config_.plugin, scenario_.device.slice, environment_.forPlugins() );
   warn( unknownTraceHandles( scenario_, config_.trace ) );
   plugin_->start();
}

void Agent::carryOutSteps() {
   for ( Scenario::Step const & step : scenario_.steps ) {
      if ( config_.lastStep && step_ > *config_.lastStep ) {
         return;
      }
      inStep( { Story::StepKind::Scenario, 0, step.action->description(),
                scenario_.sources.placeOf( step.line ) },
              [ & ] { carryOut( step ); } );
   }
}

// An audit after the step runs when nothing is left to do, and belongs to the step.
void Agent::carryOut( Scenario::Step const & step ) {
   step.action->queue( environment_.forSteps(), step.line );
   environment_.activity().run();
   if ( config_.verify == AgentConfig::Verify::afterEachStep ) {
      Steps::queueVerification( environment_.forSteps(), Steps::Verify::How::audit );
   }
}

void Agent::verify() {
   if ( config_.verify != AgentConfig::Verify::never ) {
      inStep( { Story::StepKind::Verification, 0, "the rules are verified", {} }, [ this ] {
         Steps::queueVerification( environment_.forSteps(), Steps::Verify::How::both );
      } );
   }
}

void Agent::traceLevels() {
   Trace::levelsIs( std::string( Scenario::kMounterTrace ),
                    "0," + std::to_string( Scenario::kMounterLevel ) );
   applyTraceLevels( scenario_.trace );
   applyTraceLevels( config_.trace );
}

void Agent::warn( std::vector< std::string > const & texts ) {
   for ( std::string const & text : texts ) {
      environment_.observer().onEvent( Story::Warning{ text } );
   }
}

void Agent::tearDown() {
   environment_.activity().turnNew( [ this ] { plugin_.reset(); } );
   environment_.activity().run();
   warn( togglesNotAskedFor( environment_.toggles() ) );
}

// --- Showing entities

void Agent::show( AgentConfig::Paths ) {
   for ( auto const & [ path, entity ] : environment_.finder().roots() ) {
      environment_.observer().onEvent( Story::EntityShown{
         "/" + path, { entity->typeData().name(), entity->identity(), "/" + path, {} } } );
   }
}

void Agent::show( StateDatabase::EntityPath const & path ) {
   StateDatabase::Finder const & finder = environment_.finder();
   try {
      environment_.observer().onEvent( Story::EntityShown{
         path.stringValue(),
         StateDatabase::treeOf( path.stringValue(), *finder.entity( path ), finder.roots() ) } );
   } catch ( Quelm::Error const & error ) {  // no such entity, or the key has the wrong form
      throw Story::InputError( error.what() );
   }
}

void Agent::show( Questions::Row const * question ) {
   environment_.observer().onEvent(
      Story::TableShown{ answer( *question, environment_.forQuestions() ) } );
}

}  // namespace Host
