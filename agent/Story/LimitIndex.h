// The known limits of the plug-in, found by the stop that they end in.
//
// docs/limits.md is the one place in which they are described. Its text is compiled into the
// program, which so has it wherever it is installed: the table "By the expression" says which
// expression, on which variant, after which event leads to which section, and the sections have the
// remedies.
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

// What led to a stop.
struct StopCause {
   std::string variant;               // empty while the plug-in has chosen none
   std::set< std::string > events{};  // by their names in the table, "virtual port"
};

class LimitIndex {
 public:
   // One row of the table.
   struct Row {
      std::string expression;
      std::string file;      // empty for an exception, which no assertion reports
      std::string function;  // as file
      std::string variant;   // or "both"
      std::set< std::string > events;
      std::string title;  // of the section
   };

   // Reads the text of docs/limits.md.
   explicit LimitIndex( std::string_view document );

   std::vector< Row > const & rows() const { return rows_; }

   // The limits that the stop may be, each once; none: it is not known.
   std::vector< KnownLimit > limitsAt( Stopped const & stopped, StopCause const & cause ) const;

 private:
   std::string remedyOf( std::string const & title ) const;

   std::vector< Row > rows_;
   std::vector< KnownLimit > sections_;
};

// docs/limits.md as it was when the program was built, and its index.
std::string limitsDocument();
LimitIndex const & limitIndex();

}  // namespace Story
