#!/usr/bin/python3 -B
"""The report of every scenario that ships: its numbers are those of `run --json`, the browser has no
complaint, and nothing is asked of a network."""

import pathlib

from page import SOURCES, PageTest, main, reported

NUMBERS = """
   const there = rule => rule.until === null;
   return {
      title: byId( 'title' ).textContent,
      variant: run.variant,
      frames: run.totals.frames,
      listed: run.listed,
      explained: run.explained,
      copies: run.totals.copies,
      dropped: run.totals.drops,
      steps: run.steps.length - 1,
      rules: run.rules.filter( there ).map( rule => [ rule.unit, rule.entry, rule.last.name ] ),
      added: run.steps.map( step => step.rules.filter( one => one.what === 'added' ).length ).slice( 1 ),
      removed: run.steps.map( step => step.rules.filter( one => one.what === 'removed' ).length ).slice( 1 ),
      logged: messages.filter( one => one.line.kind === 'logged' ).length,
      expectations: messages.filter( one => /^(held|failed)$/.test( one.line.kind ) ).length,
      changes: stateChanges.length,
      keptBack: Array.from( { length: run.listed }, ( _, n ) =>
         run.frame( n + 1 ).fate.copies.filter( one => one.rule !== null ).length ),
      stop: run.end.stop === null ? null : run.end.stop.asExpected,
      drawn: {
         units: document.querySelectorAll( '#drawing .unit' ).length,
         ports: document.querySelectorAll( '#drawing .port' ).length,
         vteps: document.querySelectorAll( '#drawing .vtep' ).length,
         segments: document.querySelectorAll( '#drawing .segment' ).length
      },
      wanted: {
         units: run.units.length,
         ports: run.table( 'ports', state.step ).length,
         vteps: run.table( 'vteps', state.step ).length,
         segments: run.table( 'segments', state.step ).filter(
            row => run.table( 'ports', state.step ).some( port => port.segment === row.segment &&
                                                                  !isUnderlay( port ) ) ).length
      }
   };
"""


class EveryScenario(PageTest):
    def test_its_report_has_the_numbers_of_the_run(self):
        files = sorted((pathlib.Path(SOURCES) / "scenarios").rglob("*.yaml"))
        self.assertGreater(len(files), 100)
        for file in files:
            with self.subTest(file=str(file)):
                document = reported(file, self.page())
                self.open(self.page())
                numbers = self.script(NUMBERS)
                self.expect_numbers(numbers, document)
                self.assertEqual(numbers["drawn"], numbers["wanted"])
                self.expect_quiet()

    def expect_numbers(self, numbers, document):
        counters = document["counters"]
        expected = {
            "title": document["scenario"],
            "variant": document["variant"] or "",
            "frames": counters["frames"],
            "listed": counters["frames"],
            "explained": counters["frames"],
            "copies": counters["copies"],
            "dropped": counters["framesDropped"],
            "steps": len(document["steps"]),
            "rules": [[rule["unit"], rule["id"], rule["name"]] for rule in document["rules"]],
            "added": [len(step["rulesAdded"]) for step in document["steps"]],
            "removed": [len(step["rulesRemoved"]) for step in document["steps"]],
            "logged": counters["logLines"],
            "expectations": counters["expectations"],
            "changes": counters["publishedChanges"],
            "keptBack": [sum(port["rule"] is not None for port in frame["ports"])
                         for frame in document["frames"]],
            "stop": document["stop"] and document["stop"]["asExpected"],
        }
        numbers["rules"].sort()
        expected["rules"].sort()
        for name, value in expected.items():
            self.assertEqual(numbers[name], value, name)


main()
