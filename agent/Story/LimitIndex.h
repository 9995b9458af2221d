// The known limits of the plug-in, found by the stop in which they end.
//
// Only docs/limits.md describes them. Its text is compiled into the program, so an installed
// program has it too. The table "By the expression" maps an expression, a variant and an event to a
// section, and the sections name the remedies.
#pragma once

#include <set>
#include <string>
#include <string_view>
#include <vector>

#include <Story/Event.h>

namespace Story {

struct KnownLimit {
   std::string title;
   std::string remedy;
};

// The circumstances of a stop.
struct StopCause {
   std::string variant;               // empty before the plug-in has chosen one
   std::set< std::string > events{};  // by their names in the table, "virtual port"
};

class LimitIndex {
 public:
   // One row of the table.
   struct Row {
      std::string expression;
      std::string file;      // empty for an exception, which no assertion reports
      std::string function;  // like `file`
      std::string variant;   // or "both"
      std::set< std::string > events;
      std::string title;  // of the section
   };

   // Reads the text of docs/limits.md.
   explicit LimitIndex( std::string_view document );

   std::vector< Row > const & rows() const { return rows_; }

   // The limits that the stop may be, each once; empty for an unknown stop.
   std::vector< KnownLimit > limitsAt( Stopped const & stopped, StopCause const & cause ) const;

 private:
   std::string remedyOf( std::string const & title ) const;

   std::vector< Row > rows_;
   std::vector< KnownLimit > sections_;
};

// The text of docs/limits.md when the program was built, and its index.
std::string limitsDocument();
LimitIndex const & limitIndex();

}  // namespace Story
