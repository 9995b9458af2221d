"""The tests that a mutant has to pass: those that load the plug-in or hold its classes.

    scenarios       vornal test scenarios --plugin, with what the shipped scenarios expect
    Vornal/...      test-Vornal, linked anew, file by file
    plug-in/...     test-plug-in, which opens the plug-in
    reference/...   test-reference: runs held against the second opinion

A mutant is killed by the first that fails. Those come first that have killed most mutants of the
same source in the least time; what they have killed is kept in the build folder. The order changes
how long a mutant takes, and not whether it is killed.

A trial counts only when it passes without a mutant. It is tried so when it is first needed. That
also says how long it may take: a mutant that needs much longer hangs, and is killed. A mutant that
takes all memory is stopped by a limit of it."""

import json
import os
import re
import resource
import signal
import subprocess
import threading
import time

from mutating.build import PLAIN, PLUGIN_TARGET, TEST_TARGET
from mutating.mutants import RELEASE, ROOT, WORK

SECONDS_AT_LEAST = 30
TIMES_AS_LONG = 15
MEMORY = 4 << 30


class Trial:
    """One of them."""

    def __init__(self, name, target, words):
        self.name = name
        self.target = target  # what it needs of the plug-in
        self.words = words
        self.lock = threading.Lock()

    def run(self, folder, seconds=None):
        """Whether the plug-in in the folder passes, within the seconds."""
        words = [str(one).format(folder=folder) for one in self.words]
        environment = {**os.environ, "VORNAL_TEST_PLUGIN": f"{folder}/{PLUGIN_TARGET}",
                       "LD_LIBRARY_PATH": str(RELEASE),
                       "RC_PARAMS": "max_success=300"}
        with subprocess.Popen(
                words, cwd=ROOT, env=environment, stdin=subprocess.DEVNULL,
                stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                preexec_fn=lambda: resource.setrlimit(resource.RLIMIT_AS, (MEMORY, MEMORY))
        ) as process:
            try:
                return process.wait(seconds) == 0
            except subprocess.TimeoutExpired:
                os.killpg(process.pid, signal.SIGKILL)
                return False


def all_trials():
    """All of them."""
    trials = [Trial("scenarios", PLUGIN_TARGET, [
        RELEASE / "vornal", "test", "scenarios", "--plugin", "{folder}/" + PLUGIN_TARGET])]
    for ring, target, program in (
            ("Vornal", TEST_TARGET, "{folder}/" + TEST_TARGET),
            ("plug-in", PLUGIN_TARGET, RELEASE / "test-plug-in"),
            ("reference", PLUGIN_TARGET, RELEASE / "test-reference")):
        for file in sorted((ROOT / "tests" / ring).rglob("*_test.cpp")):
            name = str(file.relative_to(ROOT / "tests"))
            trials.append(Trial(name, target, [program, "--tests-of", name, "--seconds", "600"]))
    return trials


def subject(name):
    """The words of a file's name, for telling which files have one subject."""
    return set(re.findall(r"[A-Z][a-z]+", name.rpartition("/")[2].partition(".")[0])) - {
        "Evpn", "Multihoming", "Local", "Bias", "Vornal", "Sm"}


class Trials:
    """All of them, and what each has told so far."""

    def __init__(self):
        self.trials = all_trials()
        self.kept = WORK / "trials.json"
        self.state = [one.stat().st_mtime_ns
                      for one in (PLAIN / PLUGIN_TARGET, PLAIN / TEST_TARGET, RELEASE / "vornal",
                                  RELEASE / "test-plug-in", RELEASE / "test-reference",
                                  *sorted((ROOT / "scenarios").rglob("*.yaml")))]
        self.kills = {}    # by source, by trial
        self.seconds = {}  # by trial, without a mutant
        if self.kept.exists():
            document = json.loads(self.kept.read_text())
            self.kills = document["kills"]
            if document["state"] == self.state:
                self.seconds = document["seconds"]

    def keep(self):
        """Writes down what the next run can use."""
        self.kept.write_text(json.dumps(
            {"state": self.state, "kills": self.kills, "seconds": self.seconds}))

    def worth(self, trial, file):
        """How much a trial tells about mutants of a file in a second."""
        kills = 1 + 20 * self.kills.get(file, {}).get(trial.name, 0)
        kills += 4 * len(subject(trial.name) & subject(file))
        kills += 10 if trial.name == "scenarios" else 0
        expected = 30 if "Random" in trial.name else 0.4
        return kills / self.seconds.get(trial.name, expected)

    def judge(self, mutant, job):
        """The name of the trial that kills it; None where it survives."""
        for trial in sorted(self.trials, key=lambda one: -self.worth(one, mutant.file)):
            limit = max(SECONDS_AT_LEAST, TIMES_AS_LONG * self.without_mutant(trial))
            job.link(trial.target)
            if not trial.run(job.folder, limit):
                kills = self.kills.setdefault(mutant.file, {})
                kills[trial.name] = kills.get(trial.name, 0) + 1
                return trial.name
        return None

    def without_mutant(self, trial):
        """How long it takes without a mutant."""
        with trial.lock:
            if trial.name not in self.seconds:
                begin = time.monotonic()
                if not trial.run(PLAIN):
                    raise RuntimeError(f"{trial.name} fails without a mutant")
                self.seconds[trial.name] = time.monotonic() - begin
            return self.seconds[trial.name]
