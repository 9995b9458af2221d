"""Builds what the techniques of a soak need."""

import subprocess
import sys

from soaking.work import ROOT


def carried_out(*words):
    """A command whose output is that of the soak."""
    if subprocess.run(words, cwd=ROOT, check=False).returncode != 0:
        sys.exit(f"soak: '{' '.join(words)}' failed; nothing was tried")


def build(techniques):
    """The build "release" always, those for a fuzzer where they are asked for."""
    targets = sorted({target for one in techniques for target in one.needs})
    if targets:
        carried_out("cmake", "--preset", "release")
        carried_out("cmake", "--build", "--preset", "release", "--target", *targets)
    if any(one.needs_fuzz for one in techniques):
        carried_out("tools/bootstrap", "check")
        for preset in ("fuzz", "fuzz-fast"):
            carried_out("cmake", "--preset", preset)
            carried_out("cmake", "--build", "--preset", preset)
