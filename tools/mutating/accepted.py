"""The survivors that are known, each with its reason.

The list is tools/mutating/accepted.txt:

    == A reason, which holds for every mutant up to the next one.
    FILE: FUNCTION
    - THE LINE AS IT IS
    + THE LINE AS THE MUTANT HAS IT

Lines that begin with # and empty lines say nothing. A line of several lines of a source stands in
one, with single blanks. Line numbers are left out, so that an entry stays right when something else
in the file changes. Of lines that read the same in one function, the second has its number in front:

    - 2: THE LINE AS IT IS"""

import pathlib

LIST = pathlib.Path(__file__).parent / "accepted.txt"


class WrongList(Exception):
    """The list cannot be read."""


def key_of(mutant):
    """What a mutant is found by."""
    nth = f"{mutant.nth}: " if mutant.nth > 1 else ""
    return (f"{mutant.file}: {mutant.function}", nth + mutant.before, mutant.after)


def read(path=LIST):
    """By mutant, the reason."""
    accepted = {}
    reason = place = before = None
    for number, line in enumerate(path.read_text().splitlines(), 1):
        if line.startswith("== "):
            reason, place, before = line[3:], None, None
        elif line.startswith("- ") and place:
            before = line[2:]
        elif line.startswith("+ ") and before and reason:
            accepted[place, before, line[2:]] = reason
            before = None
        elif line.startswith("Vornal/"):
            place = line
        elif line and not line.startswith("#"):
            raise WrongList(f"{path}:{number}: write '== REASON', 'FILE: FUNCTION', '- LINE' and "
                            "'+ LINE', in this order")
    return accepted
