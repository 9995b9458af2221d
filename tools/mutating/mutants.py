"""The mutants of the plug-in: every change that one of its files can have.

The same tree has the same mutants with the same ids. An id is made of the file, the function, and
the line before and after the change, so that it outlives changes elsewhere in the file.

To read all sources takes a minute. What was found is kept in the build folder, and found anew when
a source of the plug-in or of this search has changed."""

import concurrent.futures
import dataclasses
import hashlib
import json
import pathlib
import re
import shlex

ROOT = pathlib.Path(__file__).resolve().parent.parent.parent
PLUGIN = ROOT / "Vornal"
RELEASE = ROOT / "build/release"
WORK = ROOT / "build/mutants"
TOOL = ROOT / "tools/mutating"
ASSERTION = re.compile(rb"QUELM_ASSERT(_AT)?\s*\(")


@dataclasses.dataclass(frozen=True)
class Mutant:
    """A change of one place."""

    id: str
    file: str  # below the root
    line: int
    function: str
    begin: int
    end: int
    new: str
    before: str  # the lines of the place, as one
    after: str
    nth: int     # of those in the function that read so

    def text(self):
        """The text of the changed file."""
        old = (ROOT / self.file).read_bytes()
        return changed(old, self.begin, self.end, self.new.encode())

    def shown_text(self):
        """The text of the changed file as people want to see it."""
        old = (ROOT / self.file).read_bytes()
        return (old[:self.begin] + self.new.encode() + old[self.end:]).decode()

    def place(self):
        """Where it is."""
        return f"{self.file}:{self.line}"

    def told(self):
        """Where it is, and what it changes."""
        nth = f"{self.nth}: " if self.nth > 1 else ""
        return f"{self.id} {self.place()}: {nth}{self.before} -> {self.after}"


def changed(text, begin, end, new):
    """The text with another piece. Each line keeps its number, and an assertion its text: it is the
    source text of its condition, and would tell the mutant from the original where nothing else
    does."""
    new += b"\n" * (text.count(b"\n", begin, end) - new.count(b"\n"))
    for use in ASSERTION.finditer(text):
        close = closing(text, use.end())
        if use.end() <= begin and end <= close:
            arguments = text[use.end():close]
            mutated = text[use.end():begin] + new + text[end:close]
            if use[1]:
                line, arguments = arguments.split(b",", 1)
                mutated_line, mutated = mutated.split(b",", 1)
                line = mutated_line.strip()
            else:
                line = b"__LINE__"
            return b"".join((text[:use.start()], b"MUTATED_ASSERT( ", line, b", (", mutated, b"), ",
                             arguments.replace(b"\n", b" "), text[close:]))
    return text[:begin] + new + text[end:]


def closing(text, begin):
    """Where the parenthesis closes that is open in front of a place."""
    depth = 1
    for at in range(begin, len(text)):
        depth += {ord("("): 1, ord(")"): -1}.get(text[at], 0)
        if depth == 0:
            return at
    raise ValueError("a parenthesis is not closed")


def compile_commands():
    """By source of the plug-in, the words of the command that compiles it."""
    commands = {}
    for one in json.loads((RELEASE / "compile_commands.json").read_text()):
        if one["file"].startswith(f"{PLUGIN}/"):
            commands[one["file"]] = shlex.split(one["command"])
    return commands


def _changes_of(source, words):
    """The changes of a source and of the plug-in's headers in it: (file, begin, end, new,
    function)."""
    # Here, since a tool that takes the mutants from the build folder does without libclang.
    from mutating import changes, syntax  # pylint: disable=import-outside-toplevel
    flags = [one for one in words if one.startswith(("-I", "-D", "-std="))]
    return [(file.path, *change) for file in syntax.files_of(source, flags, str(PLUGIN))
            for change in changes.Finder(file).all()]


def _find():
    """All changes of all files, in their order."""
    with concurrent.futures.ProcessPoolExecutor(2) as several:
        found = [several.submit(_changes_of, *one) for one in compile_commands().items()]
        return sorted({change for one in found for change in one.result()})


def _mutants(found):
    """The mutants that these changes make."""
    mutants, texts, times = [], {}, {}
    for path, begin, end, new, function in found:
        text = texts.setdefault(path, pathlib.Path(path).read_bytes())
        first = text.rfind(b"\n", 0, begin) + 1
        last = text.find(b"\n", end)
        before = " ".join(text[first:last].decode().split())
        after = " ".join((text[first:begin].decode() + new + text[end:last].decode()).split())
        file = str(pathlib.Path(path).relative_to(ROOT))
        named = (file, function, before, after)
        times[named] = times.get(named, 0) + 1
        known_by = "\n".join((*named, str(times[named])))
        mutants.append(Mutant(
            hashlib.sha256(known_by.encode()).hexdigest()[:8], file,
            text.count(b"\n", 0, begin) + 1, function, begin, end, new, before, after,
            times[named]))
    return mutants


def all_mutants():
    """All mutants of the plug-in, in the order of its files."""
    state = hashlib.sha256()
    for path in sorted([*PLUGIN.rglob("*.cpp"), *PLUGIN.rglob("*.h"),
                        *(TOOL / one for one in ("mutants.py", "changes.py", "syntax.py"))]):
        state.update(str(path).encode() + b"\0" + path.read_bytes() + b"\0")
    kept = WORK / "mutants.json"
    if kept.exists():
        document = json.loads(kept.read_text())
        if document["state"] == state.hexdigest():
            return [Mutant(*one) for one in document["mutants"]]
    mutants = _mutants(_find())
    WORK.mkdir(parents=True, exist_ok=True)
    kept.write_text(json.dumps({
        "state": state.hexdigest(), "mutants": [dataclasses.astuple(one) for one in mutants]}))
    return mutants
