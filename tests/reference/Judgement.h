// Holds a run against the reference, step by step.
#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include <FromScenario/FromScenario.h>
#include <Run.h>

// What was judged, and what was not.
struct Counts {
   unsigned steps = 0;
   unsigned calls = 0;
   unsigned rules = 0;  // after each step
   unsigned frames = 0;
   unsigned stops = 0;                           // foretold, and met
   std::map< std::string, unsigned > noOpinion;  // by reason: steps, or frames
   unsigned stepsWithoutOpinion = 0;
   // Steps after which the rules are not those that the state alone calls for.
   unsigned stepsOffTheState = 0;

   void add( Counts const & other );
   std::string text() const;
};

struct Judgement {
   std::vector< std::string > differences;  // of the first step that has any
   std::size_t step = 0;                    // that step
   Counts counts;

   bool isOff() const { return !differences.empty(); }
   std::string text() const;
};

enum class Claim {
   history,  // everything is as the reference's history has it
   state     // as well, the rules and the frames are as the state alone calls for
};

Judgement judge( Reference::Told const & told, Run::Document const & run,
                 Claim claim = Claim::history );

// The class ids that are asked for before the plug-in is loaded, by VTEP.
std::set< std::string > requestsBefore( Reference::Told const & told );

// Runs the program on the scenario.
Judgement judgementOf( std::filesystem::path const & scenario, Claim claim = Claim::history );
