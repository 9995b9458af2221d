// Events of the agent's process, which the process that tells the story finds out itself.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include <Story/PluginEvents.h>

namespace Story {

// One line that the process wrote to standard error or standard output.
struct OutputLine {
   static constexpr char const * kName = "outputLine";
   std::string text;

   static void fields( auto & event, auto && field ) { field( "text", event.text ); }
   std::string words() const;
};

struct Assertion {
   std::string file;
   int line = 0;
   std::string function;
   std::string expression;

   // The function has this name, without its parameters: its qualified name or the end of it, as
   // "Sm::add" and "add" are of "void Vornal::Sm::add(U32)".
   bool isIn( std::string_view name ) const;

   static void fields( auto & assertion, auto && field ) {
      field( "file", assertion.file );
      field( "line", assertion.line );
      field( "function", assertion.function );
      field( "expression", assertion.expression );
   }
};

// The process did not reach the end of the run.
struct Stopped {
   static constexpr char const * kName = "stopped";
   std::string reason;  // "signal 6 (Aborted)", "exit code 1"
   std::optional< Assertion > assertion;
   std::vector< std::string > output;  // its last lines
   std::vector< Traced > trace;        // the last lines of the trace ring
   // A turn took too long, and the process was killed; `reason` is "turn limit of 60 s".
   bool isOverTime = false;
   // Whether it is the stop that the scenario expects of this step; nothing: it expects none.
   std::optional< bool > isAsExpected{};

   // An exception with this text ended the process: no assertion did, and it was printed last.
   bool isByException( std::string_view text ) const;

   static void fields( auto & event, auto && field ) {
      field( "reason", event.reason );
      field( "assertion", event.assertion );
      field( "output", event.output );
      field( "traces", event.trace );
      field( "isOverTime", event.isOverTime );
      field( "isAsExpected", event.isAsExpected );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

// A signal asked the program to end before the run was over.
struct Interrupted {
   static constexpr char const * kName = "interrupted";
   int signal = 0;
   std::string reason;  // "signal 2 (Interrupt)"

   static void fields( auto & event, auto && field ) {
      field( "signal", event.signal );
      field( "reason", event.reason );
   }
   std::string words() const;
};

using ProcessEvents = std::variant< OutputLine, Stopped, Interrupted >;

}  // namespace Story
