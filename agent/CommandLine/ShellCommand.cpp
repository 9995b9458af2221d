#include <CommandLine/ShellCommand.h>

#include <iostream>
#include <optional>

#include <CommandLine/Conversation.h>
#include <CommandLine/LineEditor.h>
#include <CommandLine/ShellCompletion.h>
#include <CommandLine/Terminal.h>
#include <CommandLine/Words.h>
#include <Process/EndWatch.h>
#include <Process/Interruption.h>

#include <signal.h>
#include <unistd.h>

namespace CommandLine {

namespace {

// Carries out the lines of standard input. A signal ends the script, as it ends any other run.
Story::ExitCode performScript( Conversation & conversation ) {
   Shell::Entries entries;
   auto const carryOut = [ & ]( std::vector< Shell::Entry > const & all ) {
      for ( Shell::Entry const & entry : all ) {
         if ( !conversation.isOver() && Process::Interruption::last() == 0 ) {
            conversation.carryOut( entry );
         }
      }
   };
   std::string line;
   while ( !conversation.isOver() && Process::Interruption::last() == 0 &&
           std::getline( std::cin, line ) ) {
      carryOut( entries.lineNew( line ) );
   }
   carryOut( entries.end() );
   int const signal = Process::Interruption::last();
   return signal == 0 ? conversation.exitCode() : Story::exitCodeOf( signal );
}

// The exit code of a signal that has asked the program to end; Ctrl-C has only ended what ran.
std::optional< Story::ExitCode > endBySignal() {
   int const signal = Process::Interruption::last();
   if ( signal == SIGINT ) {
      Process::EndWatch::goOn();
      return std::nullopt;
   }
   return signal == 0 ? std::nullopt : std::optional( Story::exitCodeOf( signal ) );
}

std::string promptOf( Conversation const & conversation, Shell::Entries const & entries ) {
   return entries.isPending() ? "... " : conversation.session().position() + "> ";
}

Story::ExitCode performDialogue( Conversation & conversation, std::ostream & out ) {
   using Kind = LineEditor::Line::Kind;
   Shell::Entries entries;
   ShellCompletion completion( conversation );
   LineEditor editor( historyFile(), [ & ]( std::string_view line ) {
      return completion.of( entries.pending(), line );
   } );
   conversation.begin();
   while ( !conversation.isOver() ) {
      if ( auto const end = endBySignal() ) {
         return *end;
      }
      out.flush();
      LineEditor::Line const line = editor.read( promptOf( conversation, entries ) );
      if ( line.signal != 0 ) {
         return Story::exitCodeOf( line.signal );
      }
      if ( line.kind != Kind::text ) {
         out << ( line.kind == Kind::interrupted ? "^C\n" : "\n" );
         entries.drop();
      }
      if ( line.kind == Kind::end ) {
         return Story::ExitCode::Held;
      }
      for ( Shell::Entry const & entry : entries.lineNew( line.text ) ) {
         conversation.carryOut( entry );
      }
   }
   return Story::ExitCode::Held;
}

}  // namespace

void ShellCommand::declare( CLI::App & app ) {
   scenario_.declare( app, ScenarioWords::Answers::dialogue, ScenarioWords::Takes::scenarios );
}

void ShellCommand::readWords() {
   scenario_.readWords();
   if ( scenario_.file() == "-" ) {
      refuseValue( "SCENARIO", "standard input holds the commands; name the scenario's file" );
   }
}

Story::ExitCode ShellCommand::perform( std::ostream & out ) {
   Conversation conversation( scenario_.file(), scenario_.config(), scenario_.turnLimit(), out );
   if ( isTerminal( STDIN_FILENO ) ) {
      return performDialogue( conversation, out );
   }
   conversation.begin();
   return performScript( conversation );
}

}  // namespace CommandLine
