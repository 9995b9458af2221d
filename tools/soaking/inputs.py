"""Inputs that a fuzzer makes, of each target in fuzz/."""

import os
import re
import tempfile

from soaking.technique import Technique
from soaking.work import ROOT

# Three pieces of a target try many inputs. The fourth tries those that were kept, and others, under
# the sanitizers.
BUILDS = ("fuzz-fast", "fuzz-fast", "fuzz-fast", "fuzz")
SECONDS = 20  # of a piece


class Inputs(Technique):
    """A piece is a time of one target, over its seeds and all that earlier soaks have kept.

    Inputs are executed at very different rates: 50,000 texts in a second, and ten stories. A fast
    target has more of the time."""

    name = "inputs"
    unit = "inputs"
    needs_fuzz = True
    weights = {"texts": 60, "lookup": 60, "features": 6, "pipeline": 6}  # of others 1

    def __init__(self, work, share, goal):
        super().__init__(work, share, goal)
        targets = sorted(one.stem for one in (ROOT / "fuzz").glob("*.cpp"))
        self.spent = {target: 0.0 for target in targets}
        self.busy = set()
        self.pieces = {target: work.number() for target in targets}

    def piece(self):
        with self.lock:
            free = [one for one in self.spent if one not in self.busy]
            target = min(free, key=lambda one: self.spent[one] / self.weights.get(one, 1))
            self.busy.add(target)
            folder = ROOT / "build" / BUILDS[self.pieces[target] % len(BUILDS)]
            self.pieces[target] += 1
        try:
            self._fuzz(folder, target)
        finally:
            with self.lock:
                self.busy.discard(target)
        return True

    def _fuzz(self, build, target):
        corpus = self.work.folder / "corpus" / target
        corpus.mkdir(parents=True, exist_ok=True)
        with tempfile.TemporaryDirectory(dir=self.work.folder, prefix="fuzz-") as folder:
            ran = self.work.run(
                [build / f"fuzz-{target}", *options(build, target), f"-seed={self.work.number()}",
                 f"-max_total_time={SECONDS}", "-print_final_stats=1",
                 f"-artifact_prefix={folder}/", corpus],
                {"LSAN_OPTIONS": f"suppressions={ROOT}/tests/known-leaks:print_suppressions=0",
                 "TMPDIR": folder})
            files = [os.path.join(folder, one) for one in os.listdir(folder)
                     if one.startswith(("crash-", "oom-", "timeout-", "leak-"))]
            self._count(target, ran)
            if ran.code != 0:
                self.keep(f"fuzz-{target}: {reason(ran.output)}", ran, files)

    def _count(self, target, ran):
        """Those that are read at the start were tried before."""
        units = re.search(r"^stat::number_of_executed_units:\s*(\d+)", ran.output, re.M)
        read = re.search(r"^#(\d+)\s+INITED", ran.output, re.M)
        if units and read:
            self.add(int(units[1]) - int(read[1]), ran)
        with self.lock:
            self.spent[target] += ran.seconds


def options(build, target):
    """The seeds, the words and the longest input, as the build names them."""
    return (build / "fuzz" / f"{target}.options").read_text().split()


def reason(output):
    """The line that says what is wrong."""
    for line in output.splitlines():
        if re.search(r"ERROR: |runtime error: |does not hold|SUMMARY: ", line):
            return re.sub(r"==\d+==\s*", "", line.strip())
    lines = output.splitlines()
    return lines[-1] if lines else "it said nothing"
