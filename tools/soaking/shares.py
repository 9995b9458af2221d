"""The techniques of a soak: their shares of the time, and what each is to reach in an hour."""

from soaking.inputs import Inputs
from soaking.model import Faults, Sequences
from soaking.mutants import Mutants
from soaking.opinion import Frames, Stories
from soaking.sizes import Events, Runs, Vteps

HOUR = 60


def techniques(work, minutes):
    """All of them. What is done once is smaller in a soak of less than an hour, and not larger in a
    longer one."""
    part = minutes / HOUR
    once = min(1.0, part)
    return [
        Sequences(work, 0.39, 3_000_000 * part),
        Faults(work, 0.112, 300_000 * part),
        Stories(work, 0.017, 5_000 * part),
        Frames(work, 0.07, 100_000_000 * part),
        Inputs(work, 0.206, 50_000_000 * part),
        Mutants(work, 0.175, 300 * part, minutes),
        Events(work, 0.01, max(400_000, 1_000_000 * once)),
        Vteps(work, 0.01, max(256, 2 * 16_384 * once)),
        Runs(work, 0.01, max(20, 1000 * once)),
    ]
