#include <iostream>
#include <sstream>

#include <CommandLine/Commands.h>
#include <CommandLine/PluginFile.h>
#include <CommandLine/RunScenario.h>
#include <Story/EntityText.h>
#include <Story/HumanWriter.h>
#include <Story/JsonForms.h>

namespace CommandLine {

namespace {

using Json = nlohmann::ordered_json;

class Shown final : public Story::Observer {
 public:
   void onEvent( Story::Event const & event ) override {
      if ( auto const * const shown = std::get_if< Story::EntityShown >( &event ) ) {
         entities_.push_back( *shown );
      }
   }

   std::vector< Story::EntityShown > const & entities() const { return entities_; }

 private:
   std::vector< Story::EntityShown > entities_;
};

Json pathsJson( std::vector< Story::EntityShown > const & entities ) {
   Json json = Json::array();
   for ( Story::EntityShown const & shown : entities ) {
      json.push_back( { { "path", shown.path },
                        { "type", shown.tree.type },
                        { "identity", shown.tree.identity } } );
   }
   return { { "entities", std::move( json ) } };
}

void print( ShowOptions const & options, std::vector< Story::EntityShown > const & entities,
            std::ostream & out ) {
   if ( options.isJson ) {
      Json const json = options.path ? Json{ { "path", entities.front().path },
                                             { "entity", jsonOf( entities.front().tree ) } }
                                     : pathsJson( entities );
      out << Story::documentText( json );
      return;
   }
   for ( Story::EntityShown const & shown : entities ) {
      out << ( options.path ? Story::treeText( shown.path, shown.tree )
                            : Story::pathLine( shown ) );
   }
}

Host::AgentConfig::Show whatToShow( ShowOptions const & options ) {
   if ( options.path ) {
      return *options.path;
   }
   return Host::AgentConfig::Paths{};
}

}  // namespace

Story::ExitCode show( ShowOptions const & options, std::ostream & out ) {
   Scenario::Model const scenario = Steps::readScenario( options.scenario );
   std::ostringstream story;
   Story::HumanWriter writer( story, Story::Style( false ) );
   Shown shown;
   Story::Outcome outcome;
   ScenarioRun const what{ scenario,
                           { .scenario = options.scenario.string(),
                             .plugin = pluginFile( options.plugin ),
                             .trace = {},
                             .show = whatToShow( options ),
                             .captures = {} },
                           {},
                           options.turnLimit };
   runScenario( what, { &writer, &shown }, outcome );
   if ( outcome.stopped() ) {
      std::cerr << story.str();
      return Story::ExitCode::Stopped;
   }
   if ( !outcome.badInput().empty() ) {
      return Story::ExitCode::BadInput;
   }
   if ( outcome.interrupted() ) {
      tellInterruption( outcome );
      return outcome.exitCode();
   }
   print( options, shown.entities(), out );
   return Story::ExitCode::Held;
}

}  // namespace CommandLine
