"""Changes of the plug-in that a test must find."""

import re

from soaking.technique import Technique
from soaking.work import ROOT, Absent

MUTATE = ROOT / "tools/mutate"
SAMPLE = 300


class Mutants(Technique):
    """One run of tools/mutate, which takes both cores for its share of the time."""

    name = "mutants"
    unit = "mutants"
    needs = ("vornal", "VornalEvpn", "test-Vornal", "test-plug-in", "test-reference")
    takes_all_cores = True

    def __init__(self, work, share, goal, minutes):
        super().__init__(work, share, goal)
        self.minutes = max(1, round(share * minutes))

    def piece(self):
        if not MUTATE.exists():
            raise Absent("no tools/mutate is in this tree")
        ran = self.work.run([MUTATE, "--sample", str(SAMPLE), "--seed", str(self.work.number()),
                             "--minutes", str(self.minutes)])
        told = re.search(r"^(\d+) mutants tried, (\d+) killed \(.*\), (\d+) survived, (\d+) "
                         r"equivalent, (\d+) did not compile", ran.output, re.M)
        if not told:
            self.failed(ran)
            return False
        self.add(int(told[1]), ran)
        self.remark = told[0].split(", ", 1)[1]
        if int(told[3]):
            self.keep(f"{told[3]} mutants survive", ran)
        return False
