// Events of the progress of a run.
#pragma once

#include <string>
#include <variant>

#include <Quelm/Integers.h>
#include <Story/Fields.h>

namespace Story {

class Document;

struct RunBegins {
   static constexpr char const * kName = "runBegins";
   std::string scenario;  // the file, as the user gave it
   std::string title;
   std::string description;
   U32 steps = 0;  // the scenario's steps

   static void fields( auto & event, auto && field ) {
      field( "scenario", event.scenario );
      field( "title", event.title );
      field( "description", event.description );
      field( "steps", event.steps );
   }
   void addTo( Document & document ) const;
};

enum class StepKind { StartUp, Scenario, Verification, Teardown };

struct StepBegins {
   static constexpr char const * kName = "stepBegins";
   StepKind kind = StepKind::Scenario;
   U32 number = 0;
   std::string text;
   std::string place;  // "FILE:LINE"; empty for steps that the scenario does not write

   static void fields( auto & event, auto && field ) {
      field( "kind", event.kind );
      field( "number", event.number );
      field( "text", event.text );
      field( "place", event.place );
   }
   void addTo( Document & document ) const;
};

struct StepEnds {
   static constexpr char const * kName = "stepEnds";
   U32 number = 0;

   static void fields( auto & event, auto && field ) { field( "number", event.number ); }
};

// The agent's clock has moved; told before the first event of that time. A run begins at 0.
struct ClockMoved {
   static constexpr char const * kName = "clockMoved";
   U64 time = 0;  // in nanoseconds

   static void fields( auto & event, auto && field ) { field( "time", event.time ); }
};

// The agent has done everything, teardown included.
struct RunEnds {
   static constexpr char const * kName = "runEnds";
   U64 time = 0;  // of the agent's clock, in nanoseconds

   static void fields( auto & event, auto && field ) { field( "time", event.time ); }
};

// The input was wrong; nothing happens after this event.
struct BadInput {
   static constexpr char const * kName = "badInput";
   std::string text;  // begins with its place

   static void fields( auto & event, auto && field ) { field( "text", event.text ); }
   void addTo( Document & document ) const;
};

// The scenario is probably mistaken; the run goes on.
struct Warning {
   static constexpr char const * kName = "warning";
   std::string text;  // begins with its place

   static void fields( auto & event, auto && field ) { field( "text", event.text ); }
   std::string words() const;
   void addTo( Document & document ) const;
};

struct ExpectationChecked {
   static constexpr char const * kName = "expectationChecked";
   std::string text;
   std::string place;  // "FILE:LINE"
   bool held = false;
   std::string found;  // the actual state, if the expectation failed

   static void fields( auto & event, auto && field ) {
      field( "text", event.text );
      field( "place", event.place );
      field( "held", event.held );
      field( "found", event.found, kOrNull );
   }
   std::string words() const;
   void addTo( Document & document ) const;
};

// The next step stops the process. The process that tells the story checks it (Story/StopCheck.h).
struct StopExpected {
   static constexpr char const * kName = "stopExpected";
   std::string text;
   std::string place;       // "FILE:LINE"
   std::string expression;  // of the assertion, or the text of the exception
   std::string function;    // with the assertion; empty: an exception stops it

   static void fields( auto & event, auto && field ) {
      field( "text", event.text );
      field( "place", event.place );
      field( "expression", event.expression );
      field( "function", event.function );
   }
};

using RunEvents = std::variant< RunBegins, StepBegins, StepEnds, ClockMoved, RunEnds, BadInput,
                                Warning, ExpectationChecked, StopExpected >;

}  // namespace Story
