"""Builds a mutant beside the release build, which it leaves as it is.

Each job has a folder below build/mutants. The changed file stands there under its own name, so that
traces and assertions name the same file, and each source that it is part of is compiled with the
words of compile_commands.json. The other objects are those of the release build. Out of them come
the plug-in and, where one of its tests is due, test-Vornal, which holds the plug-in's classes.

An object with the same contents as the release build's does what that one does. The contents are
code, data and relocations, and nothing of the place where it was compiled."""

import pathlib
import shlex
import subprocess

from mutating.mutants import PLUGIN, RELEASE, ROOT, WORK, compile_commands

MUTATED_ASSERTION = r"""#define MUTATED_ASSERT( line, condition, ... ) \
   ( static_cast< bool >( condition ) \
        ? static_cast< void >( 0 ) \
        : ::Quelm::assertionFailed( QUELM_PLACE_AT( line ), #__VA_ARGS__ ) )
"""
PLUGIN_TARGET = "VornalEvpn.so"
TEST_TARGET = "test-Vornal"
OBJECTS = "Vornal/CMakeFiles/vornal-evpn-objects.dir"


def ninja(*words):
    """What ninja says about the release build."""
    return subprocess.run(["ninja", "-C", RELEASE, "-t", *words], stdout=subprocess.PIPE,
                          check=True, text=True).stdout


def contents(path):
    """The contents of an object, without its name."""
    told = subprocess.run(["objdump", "--full-contents", "--reloc", path], stdout=subprocess.PIPE,
                          check=True).stdout
    return told.split(b"\n", 3)[3]


def object_of(source):
    """The object of a source, below the build folder."""
    return f"{OBJECTS}/{pathlib.Path(source).relative_to(PLUGIN)}.o"


class Release:
    """The release build, as it is asked for the commands that made it."""

    def __init__(self):
        self.commands = compile_commands()
        self.links = {target: ninja("commands", "-s", target)
                      for target in (PLUGIN_TARGET, TEST_TARGET)}
        made = None
        self.files = {}  # by object, what it is made of
        for line in ninja("deps", *map(object_of, self.commands)).splitlines():
            if line.startswith(" "):
                self.files[made].add(line.strip())
            elif ": #deps " in line:
                made = line.partition(": #deps ")[0]
                self.files[made] = set()
        self.contents = {}

    def is_newer_than_sources(self):
        """Whether it was made of the plug-in's sources as they are now."""
        made = min((RELEASE / one).stat().st_mtime for one in (PLUGIN_TARGET, TEST_TARGET))
        return all(one.stat().st_mtime <= made
                   for one in PLUGIN.rglob("*") if one.suffix in (".cpp", ".h"))

    def sources_with(self, file):
        """The sources that a file of the plug-in is part of."""
        return [source for source in self.commands
                if str(ROOT / file) in self.files[object_of(source)]]

    def contents_of(self, source):
        """The contents of its object."""
        if source not in self.contents:
            self.contents[source] = contents(RELEASE / object_of(source))
        return self.contents[source]


class Job:
    """A folder in which one mutant at a time is built."""

    def __init__(self, release, number):
        self.release = release
        self.folder = WORK / f"job{number}"
        self.sources = self.folder / "sources"
        self.sources.mkdir(parents=True, exist_ok=True)
        self.assertion = self.folder / "assertion.h"
        self.assertion.write_text(MUTATED_ASSERTION)
        self.objects = {}  # of the release build, by which it is replaced
        self.linked = set()

    def build(self, mutant):
        """'built', 'equivalent' or 'does not compile'."""
        file = self.sources / pathlib.Path(mutant.file).relative_to("Vornal")
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(mutant.text())
        try:
            self.objects = {}
            self.linked = set()
            for source in self.release.sources_with(mutant.file):
                made = self.compile(source, file)
                if made is None:
                    return "does not compile"
                if contents(made) != self.release.contents_of(source):
                    self.objects[object_of(source)] = str(made)
            return "built" if self.objects else "equivalent"
        finally:
            file.unlink()

    def compile(self, source, file):
        """The object of a source with the changed file; None where it does not compile."""
        made = self.folder / f"{pathlib.Path(source).stem}.o"
        words = [str(file) if one == source and file.suffix == ".cpp" else one
                 for one in self.release.commands[source]]
        words[words.index("-o") + 1] = str(made)
        words[1:1] = [f"-I{self.sources}", "-include", str(self.assertion)]
        ran = subprocess.run([one for one in words if one != "-Werror"] + ["-w"], cwd=RELEASE,
                             stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, check=False)
        return made if ran.returncode == 0 else None

    def link(self, target):
        """Links the plug-in or test-Vornal, unless that is done: out of what was compiled, and of the
        release build's other objects."""
        if target in self.linked:
            return
        command = self.release.links[target].replace("&&", "")
        words = [self.objects.get(one, one) for one in shlex.split(command) if one != ":"]
        words[words.index("-o") + 1] = str(self.folder / target)
        subprocess.run([*words, "-fuse-ld=gold"], cwd=RELEASE, check=True)
        self.linked.add(target)
