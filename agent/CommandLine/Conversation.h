// Conversation: what is typed at a prompt, or stands in a script, and the answers.
//
// An entry is a step in the words of a scenario, or one of the commands of words(). The session
// (Shell/Session.h) keeps the steps; questions are those of the program's own commands, with the
// session in place of a scenario's file. A mistake is told on standard error and changes nothing.
//
// Nothing here knows where entries come from and where answers go.
#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <map>
#include <ostream>
#include <string>
#include <string_view>
#include <vector>

#include <CommandLine/RunScenario.h>
#include <CommandLine/ScenarioWords.h>
#include <Shell/Entries.h>
#include <Shell/Session.h>

namespace CLI {
class App;
}

namespace CommandLine {

// A command of the conversation.
struct ShellWord {
   std::string_view name;
   std::string_view form;  // with its values: "run [to STEP]"
   std::string_view purpose;
};

class Conversation {
 public:
   // In the order of the help.
   static std::vector< ShellWord > words();

   // The stream must outlive the conversation. `config` names the plug-in.
   Conversation( std::filesystem::path const & file, Host::AgentConfig config,
                 std::chrono::milliseconds turnLimit, std::ostream & out );

   // Tells what the scenario is, and starts the plug-in.
   void begin();
   // Carries out what was typed. OutputError passes through.
   void carryOut( Shell::Entry const & entry );
   // Nothing more is to be carried out.
   bool isOver() const { return isOver_; }

   Shell::Session const & session() const { return session_; }
   ScenarioSource const & source() const { return source_; }
   // BadInput when there was a mistake, and else the verdict on the steps that are done. The
   // differences that `verify` finds are a failed expectation.
   Story::ExitCode exitCode() const;

 private:
   struct Known;

   static std::vector< Known > const & known();
   void command( std::string_view text );
   [[noreturn]] static void refuse( std::string const & name );
   void play( Shell::Attempt const & attempt );
   ScenarioRun runOf( Scenario::Model const & scenario ) const;

   // The commands; each takes the text behind its name.
   void next( std::string_view text );
   void run( std::string_view text );
   void show( std::string_view text ) { ask( "show", text ); }
   void explain( std::string_view text ) { ask( "explain", text ); }
   void diff( std::string_view text );
   void verify( std::string_view text );
   void whatIf( std::string_view text );
   void undo( std::string_view text );
   void save( std::string_view text );
   void help( std::string_view text );
   void quit( std::string_view text );

   // The text for the file; throws Story::InputError where it would not run.
   std::string textToSave( std::filesystem::path const & file ) const;
   bool parse(
      CLI::App & app, std::string_view text, std::function< void() > const & readWords = [] {} );
   Story::ExitCode ask( std::string const & name, std::string_view text );

   Shell::Session session_;
   ScenarioSource source_;
   std::ostream & out_;
   bool isOver_ = false;
   bool isAnyWrong_ = false;       // a mistake
   bool isAnyLeftOut_ = false;     // a line, because the plug-in had stopped
   bool isAnyDifference_ = false;  // that `verify` has found
   int line_ = 0;                  // of the entry
   std::map< std::filesystem::path, std::string > saved_;  // the texts that were written
};

}  // namespace CommandLine
