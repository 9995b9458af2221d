// What can happen in a run, as typed events.
//
// Everything that happens passes once, in order, as one of these events to a Story::Observer: what
// the plug-in asks the agent for, what other agents publish, what reaches the chip, what is traced
// and logged, and where the run stands. Whoever wants to show, count, record or check a run is an
// observer of this one stream and needs nothing else.
//
// The order of a run:
//
//    RunBegins
//    PublishedChange...                      the state that is there before the plug-in
//    StepBegins{ 0 } ... StepEnds            start-up
//    StepBegins{ 1 } ... StepEnds            the scenario's steps, from 1
//    StepBegins{ n + 1 } ... StepEnds        verification, when it is asked for
//    StepBegins{ n + 1 } ... StepEnds        teardown
//    RunEnds; Stopped when the process did not get there; BadInput when it could not go on;
//    Interrupted when somebody wanted it to end
//
// Events are plain values without references to what they tell of: they outlive it, and travel from
// the process of the agent to the one that tells the story (Story/Codec.h).
//
// An event is written in one place, a pair of files such as RunEvents.h and RunEvents.cpp. It has
//
//    kName       its name on the way between the processes
//    fields()    its fields (Story/Fields.h), for that way and for documents
//    words()     a line for people; without it people see nothing, or what HumanWriter makes of it
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

// Calls the one of several functions that takes the event at hand.
template< typename... F > struct Overloaded : F... { using F::operator()...; };
template< typename... F > Overloaded( F... ) -> Overloaded< F... >;

}  // namespace Story
