#include <CommandLine/Table.h>

#include <algorithm>

#include <CommandLine/Check.h>
#include <CommandLine/Completion.h>
#include <CommandLine/Diff.h>
#include <CommandLine/Dump.h>
#include <CommandLine/Explain.h>
#include <CommandLine/Explore.h>
#include <CommandLine/Help.h>
#include <CommandLine/Manual.h>
#include <CommandLine/Replay.h>
#include <CommandLine/Ring.h>
#include <CommandLine/Run.h>
#include <CommandLine/Schema.h>
#include <CommandLine/ShellCommand.h>
#include <CommandLine/Show.h>
#include <CommandLine/Shrink.h>
#include <CommandLine/Test.h>
#include <CommandLine/Verify.h>

namespace CommandLine {

namespace {

constexpr std::string_view kOfARun =
   "Exit codes: 0 all held, 1 an expectation failed, 2 bad input or usage, 3 the plug-in stopped "
   "the process, 129 SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfATable =
   "Exit codes: 0 shown, 2 bad input or usage, 3 the plug-in stopped the process, 129 SIGHUP, 130 "
   "SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfAnAudit =
   "Exit codes: 0 in sync, 1 differences, 2 bad input or usage, 3 the plug-in stopped the "
   "process, in its own pass or before, 129 SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfADiff =
   "Exit codes: 0 no differences, 1 differences, 2 bad input or usage, 3 the plug-in stopped the "
   "process, 129 SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfATest =
   "Exit codes: 0 all passed, 1 a scenario failed, 2 no scenario found or bad usage, 129 SIGHUP, "
   "130 SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfADump =
   "Exit codes: 0 written, 2 bad input or usage, 3 the plug-in stopped the process, 129 SIGHUP, "
   "130 "
   "SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfAShrink =
   "Exit codes: 0 made shorter, 2 bad input or usage, or a scenario that ends well, 129 SIGHUP, "
   "130 SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfAnExploration =
   "Exit codes: 0 explored, 1 other findings than those of the catalogue, or one that no known "
   "scenario shows, 2 bad input or usage, 129 SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM";
constexpr std::string_view kOfACheck = "Exit codes: 0 no mistakes, 2 mistakes, or bad usage";
constexpr std::string_view kOfAShell =
   "Exit codes of a script, from the steps that are done at its end: 0 all held, 1 an expectation "
   "failed or verify found differences, 2 a line was wrong, 3 the plug-in stopped the process, 129 "
   "SIGHUP, 130 SIGINT (Ctrl-C), 143 SIGTERM. On a terminal: 0, or a signal's";
constexpr std::string_view kOfAReplay =
   "Exit codes: 0 the same, 1 a difference, 2 bad input or usage, 129 SIGHUP, 130 SIGINT (Ctrl-C), "
   "143 SIGTERM";
constexpr std::string_view kOfARing =
   "Exit codes: 0 printed, 2 bad input or usage; with --follow, 129 SIGHUP, 130 SIGINT (Ctrl-C), "
   "143 "
   "SIGTERM";
constexpr std::string_view kOfAText = "Exit codes: 0 printed, 2 bad input or usage";

template< typename Kind > std::unique_ptr< Command > create() {
   return std::make_unique< Kind >();
}

}  // namespace

std::vector< Row > const & table() {
   static std::vector< Row > const rows{
      { "run", "Run a scenario and show what happens",
        "vornal run scenarios/start-up/scenario.yaml\n"
        "vornal run --json --trace 'VornalEvpn*/0-5' scenarios/start-up/scenario.yaml",
        create< Run >, kOfARun },
      { "show", "Run a scenario and show the state that it leads to",
        "vornal show scenarios/two-leaves/scenario.yaml rules --vtep 10.0.0.2\n"
        "vornal show scenarios/start-up/scenario.yaml entities /evpn/status",
        create< Show >, kOfATable },
      { "explain", "Run a scenario and say why a frame leaves by a port or does not",
        "vornal explain scenarios/two-leaves/scenario.yaml 2\n"
        "vornal explain scenarios/two-leaves/scenario.yaml "
        "'{ from: 10.0.0.2, vni: 10100, source: 00:00:5e:00:53:02 }'",
        create< Explain >, kOfATable },
      { "diff", "Compare the switches of two scenarios, or of two steps of one",
        "vornal diff scenarios/two-leaves/scenario.yaml --after 9 --against 8\n"
        "vornal diff scenarios/two-leaves/scenario.yaml scenarios/four-vteps/scenario.yaml",
        create< Diff >, kOfADiff },
      { "verify", "Run a scenario and compare the rules with the published state",
        "vornal verify scenarios/start-up/scenario.yaml\n"
        "vornal verify --after-each-step scenarios/two-leaves/scenario.yaml",
        create< Verify >, kOfAnAudit },
      { "test", "Run all scenarios of folders side by side and tell which failed",
        "vornal test scenarios\n"
        "vornal test --jobs 4 --junit results.xml scenarios/limits scenarios/start-up",
        create< Test >, kOfATest },
      { "dump", "Run a scenario and write the state that it leads to as a short scenario",
        "vornal dump scenarios/two-leaves/scenario.yaml --after 9\n"
        "vornal dump scenarios/vtep-flap/scenario.yaml -o flapped.yaml",
        create< Dump >, kOfADump },
      { "shrink", "Make a scenario that fails or stops as short as it can be",
        "sed /expect:/,+3d scenarios/limits/vni-swap/scenario.yaml | vornal shrink - -o "
        "short.yaml\n"
        "sed 's/count: 1 /count: 2 /' scenarios/limits/full-segment-goes/scenario.yaml | "
        "vornal shrink - -o few.yaml",
        create< Shrink >, kOfAShrink },
      { "explore", "Try every order of events on a switch, and tell how they end",
        "vornal explore explorations/start.yaml --known scenarios/limits\n"
        "vornal explore explorations/start.yaml --shard 1/4 --results first.results",
        create< Explore >, kOfAnExploration },
      { "check", "Find every mistake of scenarios, without a run",
        "vornal check scenarios/start-up/scenario.yaml\n"
        "vornal check scenarios",
        create< Check >, kOfACheck },
      { "shell", "Carry out a scenario step by step at a prompt, with steps of your own",
        "vornal shell scenarios/two-leaves/scenario.yaml\n"
        "echo show rules | vornal shell scenarios/two-leaves/scenario.yaml",
        create< ShellCommand >, kOfAShell },
      { "replay", "Play the record of a run again, and stop at the first difference",
        "vornal run --record run.record scenarios/start-up/scenario.yaml\n"
        "vornal replay run.record",
        create< Replay >, kOfAReplay },
      { "ring", "Print the lines of a binary trace ring",
        "vornal run --ring run.ring scenarios/start-up/scenario.yaml\n"
        "vornal ring run.ring",
        create< Ring >, kOfARing },
      { "schema", "Print the JSON Schema of scenarios, for editors",
        "vornal schema > scenario.schema.json\n"
        "vornal schema | diff docs/scenario.schema.json -",
        create< Schema >, kOfAText },
      { "help", "Print the help of the program, or of a command",
        "vornal help\n"
        "vornal help show",
        create< Help >, kOfAText },
      { "completion", "Print the completion of command lines for a shell",
        "vornal completion bash > vornal\n"
        "vornal completion zsh > _vornal",
        create< Completion >, kOfAText, true },
      { "manual", "Print the manual page",
        "vornal manual > vornal.1\n"
        "vornal manual | grep SYNOPSIS",
        create< Manual >, kOfAText, true }
   };
   return rows;
}

Row const * find( std::string_view name ) {
   auto const found = std::find_if( table().begin(), table().end(),
                                    [ & ]( Row const & row ) { return row.name == name; } );
   return found == table().end() ? nullptr : &*found;
}

std::vector< std::string_view > commandNames() {
   std::vector< std::string_view > names;
   for ( Row const & row : table() ) {
      if ( !row.isHidden ) {
         names.push_back( row.name );
      }
   }
   return names;
}

}  // namespace CommandLine
