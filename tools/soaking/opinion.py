"""What is held against the second opinion: stories, and frames."""

import re

from soaking.technique import Technique
from soaking.work import RELEASE, Absent

PROGRAM = RELEASE / "test-reference"


class Judged(Technique):
    """A run of the tests of the second opinion, with another seed and more to try."""

    needs = ("vornal", "VornalEvpn", "test-reference")
    tests = ""
    counted = r""
    piece_size = 0

    def judge(self, env):
        """Counts what it says that it has tried; a test that fails is a finding."""
        ran = self.work.run([PROGRAM, f"--gtest_filter={self.tests}", "--gtest_brief=1"], env)
        self.add(sum(int(count) for count in re.findall(self.counted, ran.output, re.M)), ran)
        if ran.code != 0:
            self.keep(f"{self.tests} fails with {env}", ran)


class Stories(Judged):
    """Random stories of any switch, and of a calm one."""

    name = "stories"
    unit = "stories"
    tests = "RandomStories.*"
    counted = r"^(\d+) stories:"

    def piece(self):
        self.judge({"RC_PARAMS": f"max_success=100 seed={self.work.number()}"})
        return True


class Frames(Judged):
    """Frames through a switch whose rules are at rest."""

    name = "frames"
    unit = "frames"
    tests = "FramesAtRest.*"
    counted = r"^(\d+) frames judged"

    def __init__(self, work, share, goal):
        super().__init__(work, share, goal)
        self.count = 20000
        self.is_there = False

    def piece(self):
        if not self.is_there:
            listed = self.work.run([PROGRAM, "--gtest_list_tests", f"--gtest_filter={self.tests}"])
            if "FramesAtRest" not in listed.output:
                raise Absent(f"no test {self.tests} is in this tree")
            self.is_there = True
        before = self.seconds
        self.judge({"VORNAL_FRAMES": str(self.count), "VORNAL_SEED": str(self.work.number())})
        # A piece is to take some seconds.
        self.count = self.count * 4 if self.seconds - before < 4 else self.count
        return True
