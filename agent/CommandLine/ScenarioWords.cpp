#include <CommandLine/ScenarioWords.h>

#include <CLI/CLI.hpp>

#include <CommandLine/Usage.h>

namespace CommandLine {

void ScenarioWords::declare( CLI::App & app ) {
   app.add_option( "SCENARIO", file_, "The scenario's file, a pipe, or '-' for standard input" )
      ->required()
      ->type_name( "FILE" )
      ->check( problemOfName );
   run_.declarePlugin( app );
   app.add_flag( "--json", isJson_, "Print one JSON document instead of text" );
   run_.declareTurnLimit( app );
}

Host::AgentConfig ScenarioWords::config() const {
   Host::AgentConfig config;
   config.scenario = file_.string();
   config.plugin = run_.plugin();
   return config;
}

}  // namespace CommandLine
