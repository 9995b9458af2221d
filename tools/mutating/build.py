"""Builds a mutant beside the release build, which it leaves as it is.

What the plug-in includes takes longer to compile than the plug-in. So clang compiles all of its headers
once, and again for a mutant of one of them. Beside them it compiles every source: that is the plain
plug-in, in build/mutants/plain. A mutant is held against it, and the trials must pass with it.

Each job has a folder below build/mutants. The changed file stands there under its own name, so that
traces and assertions name the same file, and each source that it is part of is compiled again with
the words of compile_commands.json, as far as clang knows them. The other objects are the plain ones.
Out of them come the plug-in and, where one of its tests is due, test-Vornal, which holds the plug-in's
classes; the rest of test-Vornal is that of the release build.

An object with the same contents as the plain one does what that one does. The contents are code,
data and relocations, and nothing of the place where it was compiled."""

import concurrent.futures
import pathlib
import re
import shlex
import shutil
import subprocess

from mutating.mutants import PLUGIN, RELEASE, ROOT, TOOL, WORK, compile_commands

JOBS = 2
COMPILER = "clang++"
MUTATED_ASSERTION = r"""#define MUTATED_ASSERT( line, condition, ... ) \
   ( static_cast< bool >( condition ) \
        ? static_cast< void >( 0 ) \
        : ::Quelm::assertionFailed( QUELM_PLACE_AT( line ), #__VA_ARGS__ ) )
"""
INCLUDE = re.compile(r"^#include <.*\.h>$", re.M)
PLUGIN_TARGET = "VornalEvpn.so"
TEST_TARGET = "test-Vornal"
OBJECTS = "Vornal/CMakeFiles/vornal-evpn-objects.dir"
PLAIN = WORK / "plain"


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
    """The object of a source, below a build folder."""
    return f"{OBJECTS}/{pathlib.Path(source).relative_to(PLUGIN)}.o"


def for_clang(words):
    """The words of a command of the release build, without what is g++'s alone."""
    kept = [one for one in words[1:] if not one.startswith(("-W", "-fno-gnu-unique"))]
    return [COMPILER, "-w", *kept]


def runs(words):
    """Whether a command of the build succeeds."""
    return subprocess.run(words, cwd=RELEASE, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                          check=False).returncode == 0


class Plain:
    """The plug-in as it is, and the commands that make it."""

    def __init__(self):
        self.commands = {source: for_clang(words)
                         for source, words in compile_commands().items()}
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
        self.objects = {object_of(source): str(PLAIN / object_of(source))
                        for source in self.commands}
        self.named = PLAIN / "plug-in.h"  # every header that one of the sources names
        self.headers = PLAIN / "plug-in.pch"
        self.contents = {}

    def release_is_newer_than_sources(self):
        """Whether the release build was made of the plug-in's sources as they are now."""
        made = min((RELEASE / one).stat().st_mtime for one in (PLUGIN_TARGET, TEST_TARGET))
        return all(one.stat().st_mtime <= made
                   for one in PLUGIN.rglob("*") if one.suffix in (".cpp", ".h"))

    def build(self):
        """Builds it, unless nothing has changed since it was built."""
        made_of = set().union(*self.files.values(), TOOL.glob("*.py"), [
            RELEASE / one for one in ("compile_commands.json", PLUGIN_TARGET, TEST_TARGET)],
            [shutil.which(COMPILER) or COMPILER])
        newest = max(pathlib.Path(RELEASE, one).stat().st_mtime for one in made_of)
        if (PLAIN / TEST_TARGET).exists() and (PLAIN / TEST_TARGET).stat().st_mtime >= newest:
            return
        (PLAIN / TEST_TARGET).unlink(missing_ok=True)
        print("compiling the plug-in without a change", flush=True)
        for one in self.objects.values():
            pathlib.Path(one).parent.mkdir(parents=True, exist_ok=True)
        named = set().union(*(INCLUDE.findall(pathlib.Path(source).read_text())
                              for source in self.commands))
        self.named.write_text(MUTATED_ASSERTION + "\n".join(sorted(named)) + "\n")
        if not self.make_headers(self.headers, []):
            raise RuntimeError(f"{COMPILER} does not compile the headers of the plug-in as it is")
        with concurrent.futures.ThreadPoolExecutor(JOBS) as several:
            done = several.map(lambda one: self.compile(one, one, self.objects[object_of(one)],
                                                        self.headers, []), self.commands)
            if not all(done):
                raise RuntimeError(f"{COMPILER} does not compile the plug-in as it is")
        for target in (PLUGIN_TARGET, TEST_TARGET):
            self.link(target, self.objects, PLAIN / target)

    def make_headers(self, made, before):
        """Compiles the headers, with these words in front."""
        words = [*next(iter(self.commands.values()))]
        words = words[:words.index("-o")]
        return runs([words[0], *before, *words[1:], "-x", "c++-header", str(self.named),
                     "-fpch-instantiate-templates", "-o", str(made)])

    def compile(self, source, file, made, headers, before):
        """Compiles a file that takes the place of a source."""
        words = [str(file) if one == source else one for one in self.commands[source]]
        words[words.index("-o") + 1] = str(made)
        return runs([words[0], *before, *words[1:], "-include-pch", str(headers)])

    def ensure_that_it_compiles(self, source, made):
        """Raises where what does not compile is not the mutant."""
        if not self.compile(source, source, made, self.headers, []):
            raise RuntimeError(f"{COMPILER} does not compile {source} any more, as it is")

    def link(self, target, objects, made):
        """Links the plug-in or test-Vornal out of these objects of the plug-in."""
        command = self.links[target].replace("&&", "")
        words = [objects.get(one, one) for one in shlex.split(command) if one != ":"]
        words[words.index("-o") + 1] = str(made)
        subprocess.run([*words, "-fuse-ld=lld"], cwd=RELEASE, check=True)

    def sources_with(self, file):
        """The sources that a file of the plug-in is part of."""
        return [source for source in self.commands
                if str(ROOT / file) in self.files[object_of(source)]]

    def contents_of(self, source):
        """The contents of its object."""
        if source not in self.contents:
            self.contents[source] = contents(self.objects[object_of(source)])
        return self.contents[source]


class Job:
    """A folder in which one mutant at a time is built."""

    def __init__(self, plain, number):
        self.plain = plain
        self.folder = WORK / f"job{number}"
        self.sources = self.folder / "sources"
        shutil.rmtree(self.sources, ignore_errors=True)  # what a run has left that was ended
        self.sources.mkdir(parents=True)
        self.before = [f"-I{self.sources}"]
        self.objects = {}
        self.linked = set()

    def build(self, mutant):
        """'built', 'equivalent' or 'does not compile'."""
        file = self.sources / pathlib.Path(mutant.file).relative_to("Vornal")
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_bytes(mutant.text())
        try:
            return self.compile(mutant, file)
        finally:
            file.unlink()

    def compile(self, mutant, file):
        """The same, while the changed file is there."""
        self.objects = dict(self.plain.objects)
        self.linked = set()
        headers = self.plain.headers
        if file.suffix == ".h":
            headers = self.folder / "plug-in.pch"
            if not self.plain.make_headers(headers, self.before):
                return "does not compile"
        for source in self.plain.sources_with(mutant.file):
            made = self.folder / f"{pathlib.Path(source).stem}.o"
            changed = file if file.suffix == ".cpp" else source
            if not self.plain.compile(source, changed, made, headers, self.before):
                self.plain.ensure_that_it_compiles(source, made)
                return "does not compile"
            if contents(made) != self.plain.contents_of(source):
                self.objects[object_of(source)] = str(made)
        return "equivalent" if self.objects == self.plain.objects else "built"

    def link(self, target):
        """Links the plug-in or test-Vornal with the mutant, unless that is done."""
        if target not in self.linked:
            self.plain.link(target, self.objects, self.folder / target)
            self.linked.add(target)
