// The off-switch agent: carries out a scenario on a made-up switch around the plug-in.
//
// 1. The agent puts the state that the scenario publishes into the database, change by change.
// 2. Start-up: the agent loads the plug-in, creates its mounters, starts them and performs their
//    mounts. The scenario's steps decide which sub-agents are ready.
// 3. The agent runs the scenario's steps one after the other. A step is over when the activity is
//    idle: no turn is queued, and no wake-up of the clock is armed. Waiting takes no time
//    (Kiv/Clock.h).
// 4. The agent shows what the caller asked for, and verifies the rules.
// 5. Teardown: the agent destroys the mounters and unloads the plug-in. Its rules stay in the chip.
//
// The observer is told everything in the order in which it happens.
//
// Failures. Wrong input (a plug-in that does not exist, a step that names an unknown attribute) is
// told as BadInput and ends the run, after an orderly teardown. An error of the plug-in stops the
// process, as on a switch; so the agent belongs in a process of its own (Process/Child.h). Plug-ins
// that do not stop can run without one.
//
// One agent per process at a time (Host/ProcessWide.h). Threads: the caller's thread becomes the
// activity's.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include <Calls/HardwareCall.h>
#include <Host/Environment.h>
#include <Host/FrameQuestion.h>
#include <Host/Particulars.h>
#include <Loading/LoadedPlugin.h>
#include <Questions/Table.h>
#include <Scenario/Scenario.h>
#include <StateDatabase/EntityPath.h>
#include <Story/Observer.h>

namespace Host {

struct AgentConfig {
   // Shown after the last step; a frame that the scenario sends, when it is sent.
   struct Nothing {};
   struct Paths {};  // the paths of all entities
   using Show = std::variant< Nothing, Paths, StateDatabase::EntityPath, Questions::Row const *,
                              Traffic::FrameAsked >;

   std::string scenario;                        // its file, as the caller gave it
   std::filesystem::path plugin;                // the shared object
   std::vector< Scenario::TraceLevels > trace;  // set after the levels of the scenario
   Show show{};
   // The last step of the scenario to carry out; nothing: all of them.
   std::optional< U32 > lastStep{};
   // The folder for captures of the frames that leave each port; nothing: no captures.
   std::optional< std::filesystem::path > captures{};
   // When to audit the rules in addition to the scenario's steps. At the end the plug-in's own pass
   // runs too.
   enum class Verify { never, atEnd, afterEachStep };
   Verify verify = Verify::never;
   // The particulars to tell, for a report; nothing: the story alone.
   std::optional< Particulars::What > particulars{};
};

class Agent {
 public:
   // Scenario, ring memory (Trace/Ring.h) and observer must outlive the agent.
   Agent( Scenario::Model const & scenario, AgentConfig config, std::span< std::byte > ring,
          Story::Observer & observer );

   // Does the whole run; may be called once.
   void run();

   // What has happened on the switch while another process was its agent.
   struct Past {
      std::span< Chip::HardwareCall const > calls;  // all that the chips have got
      std::span< Scenario::Step const > steps;      // those that have begun
   };

   // --- In place of it, for a caller who decides what happens next. Story::InputError.
   // Start-up, and the scenario's steps. The chips hold what the calls have made, and the state is
   // published that the steps have led to; sub-agents become ready again behind the start-up.
   void begin( Past const & past = {} );
   // One more step.
   void carryOut( Scenario::Step const & step );
   // The published state, an audit of the rules as they are, and the chips that hold them.
   Audit::State state() const { return environment_.forQuestions().auditor.state(); }
   Audit::Report audit() const { return environment_.forQuestions().auditor.report(); }
   Chip::Units & units() { return environment_.forSteps().board.units(); }

 private:
   void runAll();
   void traceLevels();
   void warn( std::vector< std::string > const & texts );
   template< typename Work > void inStep( Story::StepBegins const & begins, Work const & work );
   void repeat( std::span< Scenario::Step const > steps, Scenario::AfterRestart kind );
   void startUp();
   void carryOutSteps();
   void verify();
   void show( AgentConfig::Nothing ) {}
   void show( AgentConfig::Paths );
   void show( StateDatabase::EntityPath const & path );
   void show( Questions::Row const * question );
   void show( Traffic::FrameAsked const & ) { frameQuestion_->stepsAreOver(); }
   void tearDown();

   Scenario::Model const & scenario_;
   AgentConfig config_;
   Environment environment_;
   std::optional< Loading::LoadedPlugin > plugin_;
   std::optional< FrameQuestion > frameQuestion_;
   std::optional< Particulars > particulars_;
   U32 step_ = 0;
};

}  // namespace Host
