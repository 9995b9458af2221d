"""The program `vornal` as a whole: CPU time and memory of its process and of those it starts."""

import itertools
import os
import pathlib
import struct
import subprocess
import tempfile

STEPS = (25_000, 50_000, 100_000)
FRAMES = (250_000, 500_000, 1_000_000)


def run(words, folder):
    """How it ended, its seconds of CPU, and its largest process in MiB."""
    with open(os.devnull, "wb") as nowhere:
        process = subprocess.Popen(  # pylint: disable=consider-using-with
            words, cwd=folder, stdout=nowhere, stderr=nowhere
        )
        _, status, usage = os.wait4(process.pid, 0)
    return {
        "status": os.waitstatus_to_exitcode(status),
        "seconds": usage.ru_utime + usage.ru_stime,
        "mebibytes": usage.ru_maxrss / 1024,
    }


def median(values):
    """The middle one."""
    ordered = sorted(values)
    return ordered[len(ordered) // 2]


def row(name, runs):
    """As Google Benchmark tells a benchmark."""
    told = {
        "name": name,
        "real_time": 1000 * median(one["seconds"] for one in runs),
        "time_unit": "ms",
        "mebibytes": float(median(one["mebibytes"] for one in runs)),
    }
    if any(one["status"] for one in runs):
        told["error_message"] = f"ended with {[one['status'] for one in runs]}"
    return told


def switch_of(root):
    """A small switch: that of a scenario of the repository, without its steps."""
    text = (root / "scenarios" / "lag-members" / "scenario.yaml").read_text()
    return text.split("\nsteps:")[0] + "\nsteps:\n  - ready: subagents::l2Ready\n"


def with_steps(root, count):
    """One of its VTEPs gets another virtual port at each step; those below 1000 are the others'."""
    return switch_of(root) + "".join(
        f"  - publish: {{ vteps: {{ 10.0.0.2: {{ virtual-port: {1000 + n % 50000} }} }} }}\n"
        for n in range(count)
    )


def enlarge(capture, frames, file):
    """The capture's frames again and again, as a file of pcap. It is written frame by frame: what
    this process holds would count as memory of those that it starts."""
    header, rest = capture[:24], capture[24:]
    order = "<" if header[:4] in (b"\xd4\xc3\xb2\xa1", b"\x4d\x3c\xb2\xa1") else ">"
    records = []
    while rest:
        (length,) = struct.unpack(order + "I", rest[8:12])
        records.append(rest[: 16 + length])
        rest = rest[16 + length :]
    with open(file, "wb") as out:
        out.write(header)
        for record in itertools.islice(itertools.cycle(records), frames):
            out.write(record)


def measured(root):
    """All figures, as Google Benchmark's document has them."""
    program = root / "build" / "release" / "vornal"
    small = root / "scenarios" / "first-segment" / "scenario.yaml"
    rows = [row("run/small", [run([program, "run", small], root) for _ in range(41)])]
    capture = (root / "scenarios" / "captures" / "fabric-v4.pcap").read_bytes()
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        scenario = folder / "scenario.yaml"
        for count in STEPS:
            scenario.write_text(with_steps(root, count))
            rows.append(row(f"run/steps/{count}", [run([program, "run", scenario], folder)]))
        scenario.write_text(
            switch_of(root) + "  - frames: { capture: frames.pcap, on: Ethernet49 }\n"
        )
        for count in FRAMES:
            enlarge(capture, count, folder / "frames.pcap")
            for name, words in (("run", []), ("json", ["--json"])):
                command = [program, "run", scenario, *words]
                rows.append(row(f"{name}/frames/{count}", [run(command, folder)]))
    return {"benchmarks": rows}
