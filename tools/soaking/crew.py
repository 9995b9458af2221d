"""Two workers, who always take the technique that lags most behind its share."""

import collections
import threading
import time
import traceback

from soaking.work import Absent, Stopped

CORES = 2
LEAST = 5         # seconds that a piece is worth to begin for
BETWEEN = 30      # seconds between two lines that tell the progress
LIKELY = 20       # seconds that a piece takes


class Crew:
    """Works until the end, on what is open."""

    def __init__(self, work, techniques, end):
        self.soak = work
        self.all = techniques
        self.end = end
        self.open = list(techniques)
        self.lock = threading.Lock()
        self.spent = collections.Counter()
        self.is_shared = threading.Event()  # nobody takes all cores any more

    def work(self):
        """Returns when the time is over, nothing is left, or somebody has pressed Ctrl-C."""
        workers = [threading.Thread(target=self._all_cores_then_one, daemon=True),
                   threading.Thread(target=self._one_core, daemon=True)]
        for worker in workers:
            worker.start()
        try:
            self._watch(workers)
        except KeyboardInterrupt:
            print("\nsoak: stopped; the table so far", flush=True)
        self.soak.stop()
        for worker in workers:
            worker.join(5)
        self.soak.kill()
        for worker in workers:
            worker.join()

    def _watch(self, workers):
        told = time.monotonic()
        while time.monotonic() < self.end and any(one.is_alive() for one in workers):
            time.sleep(0.2)
            if time.monotonic() - told > BETWEEN:
                told = time.monotonic()
                self._tell()

    def _tell(self):
        left = max(0, int(self.end - time.monotonic()))
        tried = ", ".join(f"{one.tried:,} {one.unit}" for one in self.all if one.tried)
        found = len(self.soak.findings)
        print(f"{left // 60}:{left % 60:02} left: {tried or 'nothing yet'}; {found} found",
              flush=True)

    # --- The workers

    def _all_cores_then_one(self):
        for technique in [one for one in self.all if one.takes_all_cores]:
            while technique in self.open:
                self._do(technique)
        self.is_shared.set()
        self._one_core()

    def _one_core(self):
        self.is_shared.wait()
        while time.monotonic() < self.end - LEAST:
            technique = self._next()
            if technique is None:
                return
            self._do(technique)

    def _next(self):
        with self.lock:
            if not self.open:
                return None
            lags = min(self.open, key=lambda one: self.spent[one.name] / one.share)
            self.spent[lags.name] += LIKELY
            return lags

    def _do(self, technique):
        begun = time.monotonic()
        try:
            is_open = technique.piece()
        except Stopped:
            is_open = False
        except Absent as absent:
            technique.remark = str(absent)
            is_open = False
        except Exception as error:  # pylint: disable=broad-except
            text = traceback.format_exc()
            technique.remark = f"the soak itself failed: {error}"
            self.soak.found(technique.name, technique.remark, "", text)
            technique.found += 1
            is_open = False
        with self.lock:
            self.spent[technique.name] += time.monotonic() - begun - LIKELY
            if not is_open and technique in self.open:
                self.open.remove(technique)
