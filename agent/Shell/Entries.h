// Cuts typed lines into entries: commands, and steps as they stand in a scenario.
//
// Most entries are one line. An entry goes on in the next line while a bracket is open. A step that
// begins with a dash, or ends its line with a colon, goes on with the lines that are indented
// deeper than its first one; an empty line ends it, and so does the next entry. Empty lines,
// comments and "steps:" between entries are skipped.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace Shell {

struct Entry {
   std::string text;  // of a step without the dash
   int line = 0;      // that it begins in, from 1
};

// The entry is a step, and no command.
bool isStep( std::string_view text );

class Entries {
 public:
   // The entries that this line completes.
   std::vector< Entry > lineNew( std::string line );
   // The entry that the end of the input completes, if there is one.
   std::vector< Entry > end();
   // Drops the entry that is not complete.
   void drop() { pending_.clear(); }
   // An entry waits for more lines.
   bool isPending() const { return !pending_.empty(); }
   std::string const & pending() const { return pending_; }
   // The number of lines so far.
   int lines() const { return lines_; }

 private:
   bool goesOnWith( std::string const & line ) const;
   void begin( std::string line, std::vector< Entry > & complete );

   std::string pending_;
   bool isBlock_ = false;    // it goes on with lines that are indented deeper
   std::size_t indent_ = 0;  // of its first line
   int first_ = 0;           // its first line
   int lines_ = 0;
};

}  // namespace Shell
