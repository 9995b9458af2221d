"""What `vornal explore` tries: sequences of events, and faults in random stories."""

import json
import re
import shutil
import tempfile

from soaking.technique import Technique
from soaking.work import PROGRAM, RELEASE, ROOT


class Explored(Technique):
    """An exploration, in shares or of faults."""

    needs = ("vornal", "VornalEvpn")

    def explore(self, words, counted, scenarios=False):
        """Carries it out, and keeps each way to end that no scenario of a limit shows."""
        ran = self.work.run([PROGRAM, "explore", *words, "--known", "scenarios/limits",
                             "--jobs", "1", "--json"])
        if ran.code not in (0, 1):
            self.failed(ran)
            return
        document = json.JSONDecoder().raw_decode(re.search(r"^\{.*", ran.output, re.M | re.S)[0])[0]
        self.add(sum(document[word] for word in counted), ran)
        for one in document["findings"]:
            # A call that fails stops the process, and needs no limit. tools/explored holds the
            # transients against the table of docs/limits.md.
            is_told = (one["kind"] == "transient" or one["shownBy"]
                       or one["shortest"][:1] and one["shortest"][0].startswith("fail-call:"))
            if not is_told:
                what = f"{one['kind']} {one['what']}, by {'; '.join(one['shortest'])}"
                self.keep_once(f"{one['kind']} {one['what']}", what, ran,
                               [ROOT / one["scenario"]] if scenarios else [])
        if document["unnamed"]:
            self.keep("it ends in more ways than have room", ran)

    def keep_once(self, way, what, ran, files):
        """A way to end is one finding, however many sequences end in it."""
        if not any(found.startswith(way) for name, found in self.work.findings
                   if name == self.name):
            self.keep(what, ran, files)


class Sequences(Explored):
    """Orders of events, longer than those of tools/explored.

    A piece is a share of an exploration. The next soak goes on behind the last piece: first through
    all orders of four events, then through those of five, then from the beginning."""

    name = "sequences"
    unit = "sequences"
    lengths = ((4, 20), (5, 1000))  # with the number of their shares

    def __init__(self, work, share, goal):
        super().__init__(work, share, goal)
        self.file = work.folder / "explored.json"
        self.done = json.loads(self.file.read_text()) if self.file.exists() else {}
        self.taken = dict(self.done)

    def piece(self):
        with self.lock:
            file = min(self._explorations(), key=lambda one: (self.taken.get(one, 0), one))
            number = self.taken.get(file, 0)
            self.taken[file] = number + 1
        length, shard = self._share(number)
        self.explore([file, "--length", str(length), "--shard", shard],
                     ("sequences", "withoutEffect"))
        with self.lock:
            self.done[file] = max(self.done.get(file, 0), number + 1)
            self.file.write_text(json.dumps(self.done, indent=1) + "\n")
        return True

    @staticmethod
    def _explorations():
        return [f"explorations/{one.name}" for one in (ROOT / "explorations").glob("*.yaml")
                if re.search(r"^exploration:", one.read_text(), re.M)]

    def _share(self, number):
        number %= sum(shares for _, shares in self.lengths)
        for length, shares in self.lengths:
            if number < shares:
                break
            number -= shares
        return length, f"{number + 1}/{shares}"


class Faults(Explored):
    """Every fault in random stories: those of the shipped scenarios are tried by tools/explored."""

    name = "faults"
    unit = "faults"
    needs = ("vornal", "VornalEvpn", "soak-stories")
    stories = 80

    def piece(self):
        folder = tempfile.mkdtemp(prefix="faults-", dir=self.work.folder)
        try:
            words = [RELEASE / "soak-stories", str(self.work.number()), str(self.stories), folder]
            written = self.work.run(words)
            if written.code != 0:
                self.failed(written)
                return False
            self.explore(["--faults", folder], ("faults",), scenarios=True)
        finally:
            shutil.rmtree(folder)
        return True
