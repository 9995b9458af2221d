// An exploration: a switch to begin with, and the events that may happen to it, in any order.
//
//    exploration: two-vteps
//    based-on: ../two-leaves/scenario.yaml    # the switch, and the steps that come first
//    variant: class-id                        # that of the scenario unless given
//    length: 3                                # of the longest sequence
//    steps: [ ready: subagents::l2Ready ]     # behind those of the scenario
//    alike:
//      - [ [ 10.0.0.2, 102 ], [ 10.0.0.3, 103 ] ]
//    events:
//      - publish: { vteps: { 10.0.0.2: { virtual-port: 102 } } }
//      - withdraw: { vteps: [ 10.0.0.2 ] }
//
// Events are steps of the language of scenarios. With 'events-of: FILE', those of another
// exploration come first, and what is alike there is alike here. Words that are alike can stand for
// one another: when each of them is exchanged everywhere, with the words beside it, the same events
// are left. A sequence stands for all that differ from it by such an exchange, and only the first
// of them in the order of the events is canonical. Every beginning of a canonical sequence is
// canonical.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <Exploring/Exchanges.h>
#include <Quelm/Integers.h>
#include <Scenario/Scenario.h>

namespace Exploring {

using Sequence = std::vector< U16 >;  // numbers of events

class Exploration {
 public:
   static constexpr std::size_t kLongest = 16;
   static constexpr std::size_t kMostEvents = 1000;

   // Scenario::ReadError with every mistake that was found.
   explicit Exploration( std::filesystem::path const & file );

   std::string const & name() const { return name_; }
   std::filesystem::path const & file() const { return file_; }
   // The switch; behind its steps stand the events.
   Scenario::Model const & model() const { return model_; }
   std::size_t length() const { return length_; }

   // The number of steps in front of the first event.
   std::size_t firstEvent() const { return firstEvent_; }
   U16 events() const { return static_cast< U16 >( events_.size() ); }
   Scenario::Step const & event( U16 number ) const { return model_.steps[ firstEvent_ + number ]; }
   // The event as a step of a list, in one line.
   std::string const & text( U16 number ) const { return events_[ number ].text; }

   bool isCanonical( Sequence const & sequence ) const;
   // The number of sequences that it stands for.
   std::size_t weight( Sequence const & sequence ) const;

   // A scenario with these events behind the steps of the switch, for the folder of `place`.
   std::string scenarioText( Sequence const & sequence, std::filesystem::path const & place ) const;

   // A number that is another one whenever the file, or a scenario that it is based on, is.
   U64 fingerprint() const;

 private:
   struct Source;
   struct Event {
      std::string text;  // in one line
      Scenario::Yaml step;
      std::filesystem::path folder;  // of its paths
   };
   // By number, the event that takes the place of each event.
   using Exchange = std::vector< U16 >;

   static std::vector< Source > sourcesOf( Source const & own );
   void readEvents( std::vector< Source > const & sources, std::string const & variant );
   void readExchanges( std::vector< Source > const & sources );
   void check( WordExchange const & words, std::map< std::string, U16 > const & numbers,
               Source const & source ) const;

   std::filesystem::path file_;
   std::string name_;
   std::size_t length_ = 0;
   std::string texts_;      // of the files that name events
   Scenario::Yaml device_;  // a scenario of the switch and the steps in front
   std::vector< Event > events_;
   std::vector< Exchange > exchanges_;  // without the one that changes nothing
   std::size_t firstEvent_ = 0;
   Scenario::Model model_;
};

}  // namespace Exploring
