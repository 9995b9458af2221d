// The off-switch agent: carries a scenario out on a switch that it makes up around the plug-in.
//
// 1. The state that the scenario publishes is put into the database, change by change, before
//    anything is loaded.
// 2. Start-up: the plug-in is loaded, its mounters are created and told to start, their mounts
//    performed. Which sub-agents are ready is up to the scenario's steps.
// 3. The scenario's steps, one after the other. A step is over when the activity is idle: nothing
//    is queued, and no wake-up of the clock is armed. Waiting takes no time (Kiv/Clock.h).
// 4. What is asked for is shown, and verified.
// 5. Teardown: mounters are destroyed and the plug-in is unloaded. Rules that it leaves in the chip
//    stay.
//
// Everything that happens is told to the one observer, in the order in which it happens.
//
// Failures. What the agent was given wrong (no such plug-in, a step that names an attribute that
// does not exist) is told as BadInput and ends the run, after an orderly teardown. What the plug-in
// does wrong stops the process, as it would on a switch; hence the agent belongs into a process of
// its own (Process/Child.h). Plug-ins that do not stop can be run without one.
//
// One agent per process at a time (Host/ProcessWide.h). Threads: the calling one is the activity's.
#pragma once

#include <filesystem>
#include <optional>
#include <span>
#include <variant>
#include <vector>

#include <Host/Environment.h>
#include <Loading/LoadedPlugin.h>
#include <Questions/Table.h>
#include <Scenario/Scenario.h>
#include <StateDatabase/EntityPath.h>
#include <Story/Observer.h>

namespace Host {

struct AgentConfig {
   // What is to be shown after the last step.
   struct Nothing {};
   struct Paths {};  // at which entities are
   using Show = std::variant< Nothing, Paths, StateDatabase::EntityPath, Questions::Row const * >;

   std::string scenario;                        // its file, as it was given
   std::filesystem::path plugin;                // the shared object
   std::vector< Scenario::TraceLevels > trace;  // in force after those of the scenario
   Show show;
   // The last step of the scenario that is carried out; nothing: the scenario's last.
   std::optional< U32 > lastStep;
   // Where captures of what leaves each port go; nothing: nowhere.
   std::optional< std::filesystem::path > captures;
   // When the rules are audited beside what the scenario's steps say; at the end the plug-in's own
   // pass runs as well.
   enum class Verify { never, atEnd, afterEachStep };
   Verify verify = Verify::never;
};

class Agent {
 public:
   // Scenario, ring memory (Trace/Ring.h) and observer must outlive the agent.
   Agent( Scenario::Model const & scenario, AgentConfig config, std::span< std::byte > ring,
          Story::Observer & observer );

   // Does everything, once.
   void run();

 private:
   void runAll();
   void traceLevels();
   void warn( std::vector< std::string > const & texts );
   template< typename Work > void inStep( Story::StepBegins const & begins, Work const & work );
   void startUp();
   void carryOutSteps();
   void carryOut( Scenario::Step const & step );
   void verify();
   void show( AgentConfig::Nothing ) {}
   void show( AgentConfig::Paths );
   void show( StateDatabase::EntityPath const & path );
   void show( Questions::Row const * question );
   void tearDown();

   Scenario::Model const & scenario_;
   AgentConfig config_;
   Environment environment_;
   std::optional< Loading::LoadedPlugin > plugin_;
   U32 step_ = 0;
};

}  // namespace Host
