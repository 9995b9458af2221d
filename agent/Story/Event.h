// The events of a run, as types.
//
// Every event passes once, in order, to a Story::Observer: requests of the plug-in, state that
// other agents publish, calls that reach the chip, traces and log lines, and the progress of the
// run. An observer that shows, counts, records or checks a run needs nothing else.
//
// The order of a run:
//
//    RunBegins
//    PublishedChange...                      the state that is there before the plug-in
//    StepBegins{ 0 } ... StepEnds            start-up
//    StepBegins{ 1 } ... StepEnds            the scenario's steps, from 1
//    StepBegins{ n + 1 } ... StepEnds        verification, when it is asked for
//    StepBegins{ n + 1 } ... StepEnds        teardown
//    ClockMoved                              between any two of these, when time has passed
//    RunEnds; Stopped when the process did not get there; BadInput when it could not go on;
//    Interrupted when somebody wanted it to end
//
// Events are plain values without references to their subjects. They outlive their subjects, and
// travel from the agent's process to the one that tells the story (Story/Codec.h).
//
// An event stands in one pair of files, such as RunEvents.h and RunEvents.cpp. It has
//
//    kName       its name on the way between the processes
//    fields()    its fields (Story/Fields.h), for that way and for documents; rules, calls, frames,
//                trees and audits have a form of their own in documents (Story/JsonForms.h)
//    words()     a line for people; without it HumanWriter writes its own, or none
//    addTo()     its place in the JSON document (Story/Document.h), if it has one
//
// and stands in the list at the end of its header.
#pragma once

#include <variant>

#include <Story/AuditEvents.h>
#include <Story/ChipEvents.h>
#include <Story/PluginEvents.h>
#include <Story/ProcessEvents.h>
#include <Story/RunEvents.h>
#include <Story/StateEvents.h>

namespace Story {

// One list of several.
template< typename... Lists > struct Joined;
template< typename... A > struct Joined< std::variant< A... > > {
   using List = std::variant< A... >;
};
template< typename... A, typename... B, typename... Others >
struct Joined< std::variant< A... >, std::variant< B... >, Others... >
      : Joined< std::variant< A..., B... >, Others... > {};

using Event =
   Joined< RunEvents, PluginEvents, StateEvents, ChipEvents, AuditEvents, ProcessEvents >::List;

// Calls the function that takes the event.
template< typename... F > struct Overloaded : F... { using F::operator()...; };
template< typename... F > Overloaded( F... ) -> Overloaded< F... >;

}  // namespace Story
