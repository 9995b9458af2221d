"""The commands of a soak: they run, are counted in seconds of a core, and can be stopped."""

import contextlib
import os
import pathlib
import random
import shlex
import shutil
import signal
import subprocess
import tempfile
import threading

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
RELEASE = ROOT / "build/release"
PROGRAM = RELEASE / "vornal"


class Stopped(Exception):
    """The time is over, or somebody has pressed Ctrl-C."""


class Absent(Exception):
    """The tree has nothing that carries out the technique."""


class Ran:
    """A command that has ended."""

    def __init__(self, words, env, code, output, seconds):
        self.code = code
        self.output = output
        self.seconds = seconds  # of a core, of the command and all that it has waited for
        settings = [f"{name}={shlex.quote(value)}" for name, value in env.items()]
        self.command = " ".join(settings + [shlex.quote(str(word)) for word in words])


class Work:
    """What all techniques share. Threads: any."""

    def __init__(self, seed):
        self.folder = ROOT / "build/soak"
        self.folder.mkdir(parents=True, exist_ok=True)
        self.seed = seed
        self.findings = []
        self._numbers = random.Random(seed)
        self._lock = threading.Lock()
        self._running = set()
        self._is_over = False

    def number(self):
        """A seed that this soak has not had yet."""
        with self._lock:
            return self._numbers.randrange(1, 2**31)

    def run(self, words, env=None, folder=ROOT):
        """Carries the command out. Stopped when the soak has ended before."""
        env = env or {}
        with tempfile.TemporaryFile() as output:
            process = self._begin(words, env, folder, output)
            _, status, used = os.wait4(process.pid, 0)
            process.returncode = os.waitstatus_to_exitcode(status)
            with self._lock:
                self._running.discard(process.pid)
                if self._is_over:
                    raise Stopped()
            output.seek(0)
            text = output.read().decode(errors="replace")
        return Ran(words, env, process.returncode, text, used.ru_utime + used.ru_stime)

    def _begin(self, words, env, folder, output):
        with self._lock:
            if self._is_over:
                raise Stopped()
            process = subprocess.Popen(  # pylint: disable=consider-using-with
                words, cwd=folder, env={**os.environ, **env}, stdin=subprocess.DEVNULL,
                stdout=output, stderr=subprocess.STDOUT, start_new_session=True)
            self._running.add(process.pid)
        return process

    def stop(self):
        """Ends all commands that run, and begins no other."""
        with self._lock:
            self._is_over = True
        self._signal(signal.SIGTERM)

    def kill(self):
        """Ends those that SIGTERM has not ended."""
        self._signal(signal.SIGKILL)

    def _signal(self, number):
        with self._lock:
            for pid in self._running:
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(pid, number)

    def found(self, technique, what, command, output="", files=()):
        """Keeps what was found, once for all places where it shows, and tells it."""
        with self._lock:
            if (technique, what) in self.findings:
                return False
            self.findings.append((technique, what))
            name = f"{self.seed}-{len(self.findings)}-{technique}"
        place = self.folder / "found" / name
        place.mkdir(parents=True)
        for file in files:
            shutil.copy(file, place)
        (place / "command").write_text(f"# {what}\n{command}\n")
        (place / "output").write_text(output)
        print(f"FOUND by {technique}: {what}\n   see {place.relative_to(ROOT)}", flush=True)
        return True
