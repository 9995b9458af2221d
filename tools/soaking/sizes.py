"""A switch for a long time, a large switch, and many runs at once. Each is done once in a soak."""

import filecmp
import re
import shutil
import tempfile
import threading

from soaking.many_vteps import scenario
from soaking.technique import Technique
from soaking.work import PROGRAM, RELEASE, ROOT, Stopped

VARIANTS = ("egress-mask", "class-id")


class Once(Technique):
    """One piece for each variant."""

    def __init__(self, work, share, goal):
        super().__init__(work, share, goal)
        self.left = list(VARIANTS)

    def piece(self):
        with self.lock:
            if not self.left:
                return False
            variant = self.left.pop(0)
        self.do(variant, max(1, int(self.goal) // len(VARIANTS)))
        return bool(self.left)

    def do(self, variant, count):
        """Does the variant's part."""
        raise NotImplementedError


class Events(Once):
    """Random events on one switch; the rules and the memory are looked at (tests/soak/events.cpp)."""

    name = "events"
    unit = "events"
    needs = ("soak-events", "VornalEvpn")

    def do(self, variant, count):
        ran = self.work.run([RELEASE / "soak-events", variant, str(self.work.number()), str(count)])
        if ran.code != 0:
            self.failed(ran)
            return
        self.add(count, ran)
        memory = re.search(r"memory (\d+) KiB.* (\d+) KiB at the end", ran.output)
        before = f"{self.remark}; " if self.remark else ""
        self.remark = f"{before}{variant} {memory[1]} KiB, {memory[2]} KiB at the end"


class Vteps(Once):
    """All VTEPs of a large switch come, change and go; the rules are audited after each step."""

    name = "vteps"
    unit = "VTEPs"
    needs = ("vornal", "VornalEvpn")

    def do(self, variant, count):
        file = self.work.folder / f"many-vteps-{variant}.yaml"
        file.write_text(scenario(variant, count))
        ran = self.work.run([PROGRAM, "verify", "--after-each-step", "--turn-limit", "600", file])
        rules = [int(one) for one in re.findall(r"in sync; (\d+) expected rules", ran.output)]
        if ran.code != 0 or not rules or max(rules) < count or rules[-1] != 0:
            self.keep(f"{count} VTEPs on {variant}: {'; '.join(ran.output.splitlines()[-3:])[:300]}",
                      ran, [file])
            return
        self.add(count, ran)


class Runs(Technique):
    """Many runs of the program at once, with all their files in one folder.

    Each must tell what a single one tells, write the same captures, the same ring, and a record that
    replays without a difference; and nothing else may stand in the folders behind them."""

    name = "runs"
    unit = "runs"
    needs = ("vornal", "VornalEvpn")
    takes_all_cores = True
    story = ROOT / "scenarios/two-leaves/scenario.yaml"

    def piece(self):
        folder = self.work.folder / "runs"
        shutil.rmtree(folder, ignore_errors=True)
        (folder / "tmp").mkdir(parents=True)
        alone = self._ran(folder, "alone")
        runs = self._at_once(folder, int(self.goal))
        for name, (ran, replayed) in sorted(runs.items()):
            for what in self._wrong(folder, name, ran, alone):
                self.keep(what, ran)
            if replayed.code != 0:
                self.keep("the record of a run among many does not replay", replayed)
        expected = {f"{name}.{end}" for name in ["alone", *runs] for end in ("ring", "record", "out")}
        expected.add("tmp")
        left = sorted({one.name for one in folder.iterdir()} ^ expected)
        left += sorted(str(one) for one in (folder / "tmp").iterdir())
        if left:
            self.keep(f"files that nobody asked for, or that are missing: {left[:5]}", alone)
        shutil.rmtree(folder)
        return False

    def _at_once(self, folder, count):
        runs = {}

        def one(name):
            try:
                runs[name] = self._ran(folder, name), self._replayed(folder, name)
            except Stopped:
                pass
        threads = [threading.Thread(target=one, args=(f"run-{n}",)) for n in range(count)]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if len(runs) < count:
            raise Stopped()
        return runs

    def _ran(self, folder, name):
        ran = self.work.run(
            [PROGRAM, "run", self.story, "--ring", folder / f"{name}.ring", "--record",
             folder / f"{name}.record", "--pcap-out", folder / f"{name}.out"],
            {"TMPDIR": str(folder / "tmp")})
        self.add(0 if name == "alone" else 1, ran)
        return ran

    def _replayed(self, folder, name):
        ran = self.work.run([PROGRAM, "replay", folder / f"{name}.record"],
                             {"TMPDIR": str(folder / "tmp")})
        self.add(0, ran)
        return ran

    def _wrong(self, folder, name, ran, alone):
        """What differs from the run alone."""
        if ran.code != 0:
            return [f"a run among many ends with exit code {ran.code}"]
        wrong = []
        if ran.output.replace(f"/{name}.", "/alone.") != alone.output:
            wrong.append("a run among many tells something else")
        if not filecmp.cmp(folder / f"{name}.ring", folder / "alone.ring", shallow=False):
            wrong.append("the ring of a run among many is another one")
        captures = sorted(one.name for one in (folder / "alone.out").iterdir())
        _, other, missing = filecmp.cmpfiles(folder / "alone.out", folder / f"{name}.out",
                                             captures, shallow=False)
        if other or missing or len(list((folder / f"{name}.out").iterdir())) != len(captures):
            wrong.append("the captures of a run among many are others")
        return wrong
