#include <CommandLine/ScenarioWords.h>

#include <charconv>

#include <CLI/CLI.hpp>

#include <CommandLine/PluginFile.h>
#include <CommandLine/Usage.h>

namespace CommandLine {

namespace {

// Longer than any turn that makes progress, and as long as a person waits before they look into it.
constexpr char const * kTurnLimit = "60";  // seconds

constexpr double kLongestTurnLimit = 86400;  // a day, in seconds

// Reads a number of seconds; a part of a millisecond counts as a whole one.
std::chrono::milliseconds turnLimitOf( std::string const & text ) {
   double seconds = -1;
   auto const [ end, error ] = std::from_chars( text.data(), text.data() + text.size(), seconds );
   bool const isWhole = error == std::errc() && end == text.data() + text.size();
   // NaN is in no range.
   if ( !isWhole || !( seconds >= 0 && seconds <= kLongestTurnLimit ) ) {
      throw CLI::ValidationError( "--turn-limit",
                                  "'" + text +
                                     "' is not how long a turn may take; give seconds from 0 to "
                                     "86400, such as 2.5, or 0 for as long as it likes" );
   }
   return std::chrono::ceil< std::chrono::milliseconds >(
      std::chrono::duration< double >( seconds ) );
}

}  // namespace

void ScenarioWords::declare( CLI::App & app ) {
   turnLimitText_ = kTurnLimit;
   app.add_option( "SCENARIO", file_, "The scenario's file, a pipe, or '-' for standard input" )
      ->required()
      ->check( problemOfName );
   app.add_option( "--plugin", plugin_,
                   "The plug-in's shared object; VornalEvpn.so as it comes with the program if "
                   "none is given" )
      ->type_name( "FILE" )
      ->check( problemOfName );
   app.add_flag( "--json", isJson_, "Print one JSON document instead of text" );
   app.add_option( "--turn-limit", turnLimitText_,
                   "How long a turn of the plug-in may take before it counts as hanging, from 0 to "
                   "86400, such as 2.5; 0 for as long as it likes" )
      ->type_name( "SECONDS" )
      ->capture_default_str();
}

void ScenarioWords::readWords() {
   turnLimit_ = turnLimitOf( turnLimitText_ );
}

Host::AgentConfig ScenarioWords::config() const {
   Host::AgentConfig config;
   config.scenario = file_.string();
   config.plugin = pluginFile(
      plugin_.empty() ? std::nullopt : std::optional< std::filesystem::path >( plugin_ ) );
   return config;
}

}  // namespace CommandLine
