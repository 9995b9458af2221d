"""One technique of a soak: pieces of work, one after the other, and what they have tried."""

import threading


class Technique:
    """A piece of it takes some seconds of one core. Derived classes do the piece."""

    name = ""
    unit = ""
    needs = ()  # targets of the build "release"
    needs_fuzz = False
    takes_all_cores = False

    def __init__(self, work, share, goal):
        self.work = work
        self.share = share  # of the time
        self.goal = goal    # that much is reached in the time
        self.tried = 0
        self.seconds = 0.0
        self.found = 0
        self.remark = ""
        self.lock = threading.Lock()

    def piece(self):
        """Does a piece. False when there is nothing left to do."""
        raise NotImplementedError

    def add(self, tried, ran):
        """Counts what a command has tried."""
        with self.lock:
            self.tried += tried
            self.seconds += ran.seconds

    def keep(self, what, ran, files=()):
        """Keeps a finding of the command."""
        if self.work.found(self.name, what, ran.command, ran.output, files):
            with self.lock:
                self.found += 1

    def failed(self, ran):
        """Keeps a command that went wrong in a way of its own."""
        lines = [line for line in ran.output.splitlines() if line.strip()]
        last = lines[-1] if lines else "it said nothing"
        self.keep(f"exit code {ran.code}: {last}", ran)
