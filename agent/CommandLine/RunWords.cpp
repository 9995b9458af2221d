#include <CommandLine/RunWords.h>

#include <optional>

#include <CommandLine/PluginFile.h>
#include <CommandLine/Usage.h>
#include <CommandLine/Words.h>
#include <Text/Numbers.h>

namespace CommandLine {

namespace {

// Longer than any turn that makes progress, and as long as a person waits before they look into it.
constexpr char const * kTurnLimit = "60";  // seconds

constexpr double kLongestTurnLimit = 86400;  // a day, in seconds

// Reads a number of seconds; a part of a millisecond counts as a whole one.
std::chrono::milliseconds turnLimitOf( std::string const & text ) {
   auto const seconds = Text::numberIn< double >( text );
   // NaN is in no range.
   if ( !seconds || !( *seconds >= 0 && *seconds <= kLongestTurnLimit ) ) {
      refuseValue( "--turn-limit", "'" + text +
                                      "' is no time limit of a turn; give seconds from 0 to 86400, "
                                      "such as 2.5, or 0 for no limit" );
   }
   return std::chrono::ceil< std::chrono::milliseconds >(
      std::chrono::duration< double >( *seconds ) );
}

}  // namespace

void RunWords::declarePlugin( CLI::App & app ) {
   value( app, "--plugin", plugin_,
          "The plug-in's shared object; by default the VornalEvpn.so that comes with the program" )
      .type( "FILE" )
      .check( problemOfName );
}

void RunWords::declareTurnLimit( CLI::App & app ) {
   turnLimitText_ = kTurnLimit;
   value( app, "--turn-limit", turnLimitText_,
          "The time limit of a turn of the plug-in in seconds, from 0 to 86400, such as "
          "2.5; 0 means no limit" )
      .type( "SECONDS" )
      .usual();
}

void RunWords::readWords() {
   turnLimit_ = turnLimitOf( turnLimitText_ );
}

std::filesystem::path RunWords::plugin() const {
   return pluginFile( plugin_.empty() ? std::nullopt
                                      : std::optional< std::filesystem::path >( plugin_ ) );
}

}  // namespace CommandLine
