// Reads lines from a person at a terminal, with history and completion, by libedit.
//
//    LineEditor editor( historyFile(), complete );
//    auto const line = editor.read( "two-leaves 8/12> " );
//
// While an object exists, SIGINT (Ctrl-C), SIGTERM and SIGHUP do not end the process: at the prompt
// they end the line that is typed, elsewhere whoever runs something takes note of them. The history
// is a file of kMostLines lines at most that only its owner can read; a file that cannot be read or
// written is no error, and one that is no history stays as it is. One object in a process at a
// time.
#pragma once

#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct editline;
struct history;  // also the name of a function of the library

namespace CommandLine {

// What can stand in place of the word that begins at `begin`.
struct Candidates {
   std::size_t begin = 0;
   std::vector< std::string > words{};
};

// $XDG_STATE_HOME/vornal/history, or that below ~/.local/state; empty without a home.
std::filesystem::path historyFile();

class LineEditor {
 public:
   static constexpr int kMostLines = 1000;

   struct Line {
      enum class Kind { text, interrupted, end };

      Kind kind = Kind::end;
      std::string text{};
      int signal = 0;  // SIGTERM or SIGHUP when it ended the input
   };
   // Takes the line up to the cursor.
   using Complete = std::function< Candidates( std::string_view ) >;

   // `file` holds the history; empty: it is not kept.
   LineEditor( std::filesystem::path file, Complete complete );
   LineEditor( LineEditor const & ) = delete;
   LineEditor & operator=( LineEditor const & ) = delete;
   ~LineEditor();

   Line read( std::string const & prompt );

 private:
   class Signals;

   static char * promptOf( editline * editor );
   static int readCharacter( editline * editor, wchar_t * character );
   static unsigned char completeWord( editline * editor, int key );
   unsigned char completeWord();
   void list( std::vector< std::string > const & words );
   void loadHistory();
   void saveHistory();

   std::filesystem::path file_;  // empty: the history is not kept
   Complete complete_;
   std::string prompt_;
   std::unique_ptr< Signals > signals_;
   struct history * history_;
   editline * editor_;
};

}  // namespace CommandLine
