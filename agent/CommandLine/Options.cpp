#include <CommandLine/Options.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <iostream>
#include <sstream>

#include <CLI/CLI.hpp>

#include <CommandLine/Usage.h>
#include <CommandLine/Version.h>
#include <Quelm/Error.h>
#include <Scenario/Characters.h>
#include <Story/Outcome.h>
#include <Text/Printable.h>
#include <Text/Words.h>
#include <Trace/Trace.h>

namespace CommandLine {

namespace {

constexpr char const * kExitCodes =
   "Exit codes: 0 all held, 1 an expectation failed, 2 bad input or usage, 3 the plug-in stopped "
   "the process, 129 SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM";

constexpr double kLongestTurnLimit = 86400;  // a day, in seconds

// Reads "HANDLE/LEVELS".
Scenario::TraceLevels traceOf( std::string const & text ) {
   std::size_t const slash = text.rfind( '/' );
   Scenario::TraceLevels const trace{ text.substr( 0, slash ),
                                      slash == std::string::npos ? "" : text.substr( slash + 1 ) };
   if ( slash == std::string::npos || trace.handles.empty() ) {
      throw CLI::ValidationError( "--trace", "'" + text +
                                                "' is not HANDLE/LEVELS such as "
                                                "'VornalEvpn*/0-5'" );
   }
   try {
      Trace::levelsFromText( trace.levels );
   } catch ( Quelm::TextError const & error ) {
      throw CLI::ValidationError( "--trace", error.what() );
   }
   return trace;
}

StateDatabase::EntityPath pathOf( std::string const & text ) {
   try {
      return StateDatabase::EntityPath::fromString( text );
   } catch ( Quelm::TextError const & error ) {
      throw CLI::ValidationError( "PATH", "'" + text +
                                             "' is not the path of an entity such as "
                                             "'/evpn/status': " +
                                             error.what() );
   }
}

// Reads a number of seconds; a part of a millisecond counts as a whole one.
std::chrono::milliseconds turnLimitOf( std::string const & text ) {
   double seconds = -1;
   auto const [ end, error ] = std::from_chars( text.data(), text.data() + text.size(), seconds );
   bool const isWhole = error == std::errc() && end == text.data() + text.size();
   // What is no number is in no range.
   if ( !isWhole || !( seconds >= 0 && seconds <= kLongestTurnLimit ) ) {
      throw CLI::ValidationError( "--turn-limit",
                                  "'" + text +
                                     "' is not how long a turn may take; give seconds from 0 to "
                                     "86400, such as 2.5, or 0 for as long as it likes" );
   }
   return std::chrono::ceil< std::chrono::milliseconds >(
      std::chrono::duration< double >( seconds ) );
}

// What CLI11 fills in; turned into a command afterwards.
struct Words {
   std::string scenario;
   std::string plugin;
   std::string ring;
   std::string captures;
   std::vector< std::string > trace;
   std::string what;
   std::string path;
   bool isJson = false;
   bool isAfterEachStep = false;
   std::string turnLimit =
      std::to_string( std::chrono::duration_cast< std::chrono::seconds >( kTurnLimit ).count() );

   std::optional< std::filesystem::path > pluginFile() const {
      return plugin.empty() ? std::nullopt : std::optional< std::filesystem::path >( plugin );
   }

   RunOptions runOptions() const {
      RunOptions options{
         scenario, pluginFile(), std::nullopt, {}, isJson, std::nullopt, turnLimitOf( turnLimit )
      };
      if ( !captures.empty() ) {
         options.captures = captures;
      }
      if ( !ring.empty() ) {
         options.ring = ring;
      }
      for ( std::string const & text : trace ) {
         options.trace.push_back( traceOf( text ) );
      }
      return options;
   }

   ShowOptions showOptions() const {
      ShowOptions options{ scenario, std::nullopt, pluginFile(), isJson, turnLimitOf( turnLimit ) };
      if ( !path.empty() ) {
         options.path = pathOf( path );
      }
      return options;
   }
};

// What names a file or a folder.
CLI::Validator const named(
   []( std::string & text ) {
      return text.empty() ? std::string( "an empty text names nothing; give a name" )
                          : std::string();
   },
   "" );

CLI::Validator const entities(
   []( std::string & text ) {
      return text == "entities" ? std::string() : "'" + text + "' cannot be shown; give 'entities'";
   },
   "" );

void addScenarioOptions( CLI::App & command, Words & words ) {
   command
      .add_option( "SCENARIO", words.scenario,
                   "The scenario's file, a pipe, or '-' for standard input" )
      ->required()
      ->check( named );
   command
      .add_option( "--plugin", words.plugin,
                   "The plug-in's shared object; VornalEvpn.so as it comes with the program if "
                   "none is given" )
      ->type_name( "FILE" )
      ->check( named );
   command.add_flag( "--json", words.isJson, "Print one JSON document instead of text" );
   command
      .add_option( "--turn-limit", words.turnLimit,
                   "How long a turn of the plug-in may take before it counts as hanging, from 0 to "
                   "86400, such as 2.5; 0 for as long as it likes" )
      ->type_name( "SECONDS" )
      ->capture_default_str();
}

void addRun( CLI::App & app, Words & words ) {
   CLI::App & run = *app.add_subcommand( "run", "Run a scenario and tell what happens" );
   addScenarioOptions( run, words );
   run.add_option( "--trace", words.trace,
                   "Show what a trace handle traces at these levels ('VornalEvpn*/0-5,9'); can be "
                   "given several times" )
      ->type_name( "HANDLE/LEVELS" )
      ->take_all()
      ->expected( 1 );
   run.add_option( "--ring", words.ring, "Write the binary trace ring into this file" )
      ->type_name( "FILE" )
      ->check( named );
   run.add_option( "--pcap-out", words.captures,
                   "Write what leaves each port into this folder, as captures" )
      ->type_name( "DIR" )
      ->check( named );
   run.footer( kExitCodes );
}

void addShow( CLI::App & app, Words & words ) {
   CLI::App & show =
      *app.add_subcommand( "show", "Run a scenario and show the state that it leads to" );
   addScenarioOptions( show, words );
   show.add_option( "WHAT", words.what, "What to show: 'entities'" )->required()->check( entities );
   show.add_option( "PATH", words.path,
                    "The entity's path, '/evpn/status/segmentStatus[Port-Channel1]'; without one, "
                    "the paths to begin with are listed" );
   show.footer( kExitCodes );
}

void addVerify( CLI::App & app, Words & words ) {
   CLI::App & verify =
      *app.add_subcommand( "verify",
                           "Run a scenario, and hold the rules against the state that they serve" );
   addScenarioOptions( verify, words );
   verify.add_flag( "--after-each-step", words.isAfterEachStep,
                    "Audit the rules after each step as well" );
   verify.footer(
      "Exit codes: 0 in step, 1 differences, 2 bad input or usage, 3 the plug-in stopped the "
      "process, in its own pass or before, 129 SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM" );
}

void addRing( CLI::App & app, Words & words ) {
   CLI::App & ring = *app.add_subcommand( "ring", "Print the lines of a binary trace ring" );
   ring.add_option( "FILE", words.ring, "The file that 'run --ring' has written" )->required();
}

Command commandOf( CLI::App const & app, Words const & words ) {
   if ( app.got_subcommand( "run" ) ) {
      return words.runOptions();
   }
   if ( app.got_subcommand( "show" ) ) {
      return words.showOptions();
   }
   if ( app.got_subcommand( "verify" ) ) {
      return VerifyOptions{ words.scenario, words.pluginFile(), words.isAfterEachStep, words.isJson,
                            turnLimitOf( words.turnLimit ) };
   }
   return RingOptions{ words.ring };
}

constexpr std::array< std::string_view, 4 > kCommands{ "run", "show", "verify", "ring" };

// Whether the first word can stand there: a command, or an option.
bool isCommand( std::string_view word ) {
   return word.starts_with( '-' ) ||
          std::find( kCommands.begin(), kCommands.end(), word ) != kCommands.end();
}

// A message that holds what somebody has typed.
std::string shown( std::string const & message ) {
   return Text::printableLines( Scenario::shortened( message ) );
}

std::string noCommand( std::string const & word ) {
   std::vector< std::string_view > const known( kCommands.begin(), kCommands.end() );
   std::string_view const near = Text::nearest( word, known );
   std::string const hint = near.empty() ? "the commands are " + Text::listed( known, "and" )
                                         : "did you mean '" + std::string( near ) + "'?";
   return shown( "no command '" + word + "'; " + hint );
}

}  // namespace

std::variant< Command, Done > parse( int argc, char const * const * argv, std::ostream & out ) {
   CLI::App app(
      "An off-switch agent: loads a forwarding plug-in, plays the other agents of a "
      "switch, and tells what the plug-in does.",
      "vornal" );
   app.require_subcommand( 1 );
   app.failure_message( []( CLI::App const * failed, CLI::Error const & error ) {
      return usageText( *failed, error );
   } );
   app.footer( kExitCodes );
   app.set_version_flag( "--version", "vornal " + std::string( version() ),
                         "Print the version of the program" );
   Words words;
   addRun( app, words );
   addShow( app, words );
   addVerify( app, words );
   addRing( app, words );
   if ( argc > 1 && !isCommand( argv[ 1 ] ) ) {
      std::cerr << noCommand( argv[ 1 ] ) << '\n';
      return Done{ static_cast< int >( Story::ExitCode::BadInput ) };
   }
   try {
      app.parse( argc, argv );
      return commandOf( app, words );
   } catch ( CLI::ParseError const & error ) {
      std::ostringstream message;
      bool const isHelp = app.exit( error, out, message ) == 0;
      std::cerr << shown( message.str() );
      return Done{ isHelp ? 0 : static_cast< int >( Story::ExitCode::BadInput ) };
   }
}

}  // namespace CommandLine
