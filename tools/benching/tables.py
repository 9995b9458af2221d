"""The tables of the benchmarks."""

import dataclasses

SECONDS_A_SLOW_CALL = 26e-6  # a measured figure for a bulk write to hardware
PHASES = ["bring_up", "churn", "removal"]
VARIANTS = ["egress mask", "class id"]
UNITS_OF_TIME = {"ns": 1e-9, "us": 1e-6, "ms": 1e-3, "s": 1.0}


@dataclasses.dataclass
class Entry:
    """One benchmark: its name, its arguments and its figures."""

    name: str
    arguments: dict
    figures: dict
    seconds: float  # a turn
    rate: float  # items a second, 0 when there are none
    error: str
    label: str
    words: list  # of the name, behind the first

    @property
    def variant(self):
        """As the tables call it."""
        return VARIANTS[self.arguments["variant"]]


def entries_of(document):
    """The benchmarks of Google Benchmark's document."""
    entries = []
    for row in document["benchmarks"]:
        name, *words = row["name"].split("/")
        pairs = [word.split(":") for word in words if ":" in word]
        arguments = {pair[0]: int(pair[1]) for pair in pairs if pair[1].isdigit()}
        plain = [int(word) for word in words if word.isdigit()]
        if plain:
            arguments[""] = plain[0]
        figures = {k: v for k, v in row.items() if isinstance(v, float)}
        seconds = row.get("real_time", 0.0) * UNITS_OF_TIME[row.get("time_unit", "s")]
        error = row.get("error_message", "")
        entries.append(
            Entry(
                name,
                arguments,
                figures,
                seconds,
                row.get("items_per_second", 0.0),
                error,
                row.get("label", ""),
                words,
            )
        )
    return entries


def table(heads, rows):
    """Columns as wide as they need, numbers to the right."""
    texts = [heads] + [[str(cell) for cell in row] for row in rows]
    widths = [max(len(row[n]) for row in texts) for n in range(len(heads))]
    lines = []
    for row in texts:
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        lines.append("   " + "  ".join(cells).rstrip())
    return "\n".join(lines)


def spread(figures, name):
    """A median with its quartiles."""
    low, middle, high = figures[f"{name}.low"], figures[name], figures[f"{name}.high"]
    return f"{middle:.2f} ({low:.2f}-{high:.2f})"


def at_slow_calls(figures, phase, published):
    """The ratio where each call takes as long as a bulk write to hardware, from the times of calls
    that cost nothing. `published` is what publishing the state takes of the plug-in's turns."""
    calls = figures[f"{phase}.calls"] * SECONDS_A_SLOW_CALL * 1000
    return (figures[f"{phase}.plugin"] - published + calls) / (figures[f"{phase}.replay"] + calls)


def memory(entries):
    """What a VTEP takes on each unit, and each port that it shares there; and a rule of the chip.
    They come of how the bytes grow with the units, and with the ports."""
    plugin, chip = {}, {}
    for entry in entries:
        key = tuple(entry.arguments[one] for one in ("variant", "vteps", "units", "ports"))
        plugin[key], chip[key] = entry.figures["bytes.plugin"], entry.figures["bytes.chip"]
    rows = []
    for variant, vteps in sorted({key[:2] for key in plugin}):
        def more(bytes_of, units, ports, variant=variant, vteps=vteps):
            return (bytes_of[variant, vteps, units, ports] - bytes_of[variant, vteps, 1, 4]) / vteps
        rows.append(
            [VARIANTS[variant], vteps, f"{more(plugin, 4, 4) / 3:.0f}"]
            + [f"{more(plugin, 1, 64) / 60:.0f}", f"{more(chip, 4, 4) / 3:.0f}"]
        )
    heads = ["variant", "VTEPs", "plug-in's bytes, a VTEP on a unit", "a port of it", "chip's, a rule"]
    return table(heads, rows)


def programming(entries):
    """The plug-in's time beside that of its calls alone, and its memory."""
    heads = ["variant", "VTEPs", "units", "ports", "phase", "calls", "state ms", "plug-in ms"]
    heads += ["calls alone ms", "with publishing", "alone", "with publishing, 26 us", "alone, 26 us"]
    rows = []
    for entry in entries:
        figures = entry.figures
        for phase in PHASES:
            if entry.name == "slow":
                ratios = ["-", "-"]
                ratios += [f"{figures[f'{phase}.{kind}']:.3f} measured" for kind in ("ratio", "own")]
            else:
                ratios = [spread(figures, f"{phase}.{kind}") for kind in ("ratio", "own")]
                ratios += [f"{at_slow_calls(figures, phase, published):.3f}"
                           for published in (0, figures[f"{phase}.state"])]
            rows.append(
                [entry.variant]
                + [entry.arguments[key] for key in ("vteps", "units", "ports")]
                + [phase.replace("_", " "), f"{figures[f'{phase}.calls']:.0f}"]
                + [f"{figures[f'{phase}.{kind}']:.2f}" for kind in ("state", "plugin", "replay")]
                + ratios
            )
    at_no_cost = [entry for entry in entries if entry.name != "slow"]
    return table(heads, rows) + "\n\n" + memory(at_no_cost)


def growth(entries):
    """Twice as much of something: how much more time and memory."""
    heads = ["variant", "VTEPs", "units", "ports", "rules", "rules/s", "bring up ms", "x"]
    heads += ["removal ms", "x", "bytes/rule", "x"]
    rows = []
    before = {}
    for entry in entries:
        key = tuple(entry.arguments[one] for one in ("variant", "vteps", "units", "ports"))
        figures = entry.figures
        half = next(
            (before[other] for n in (1, 2, 3)
             if (other := (*key[:n], key[n] // 2, *key[n + 1:])) in before),
            None,
        )

        def times(name, figures=figures, half=half):
            return f"{figures[name] / half[name]:.2f}" if half else "-"

        before[key] = figures
        rows.append(
            [entry.variant, *key[1:], f"{figures['rules']:.0f}"]
            + [f"{figures['rules'] / figures['bring_up'] * 1000:.0f}"]
            + [f"{figures['bring_up']:.1f}", times("bring_up")]
            + [f"{figures['removal']:.1f}", times("removal")]
            + [f"{figures['bytes'] / figures['rules']:.0f}", times("bytes")]
        )
    return table(heads, rows)


def locality(entries):
    """An event alone, and among VTEPs that it does not touch."""
    rows = [
        [entry.name.split("::")[-1].rstrip("> "), entry.variant]
        + [f"{entry.figures['alone']:.3f}", f"{entry.figures['among']:.3f}"]
        + [spread(entry.figures, "ratio")]
        for entry in entries
    ]
    return table(["event", "variant", "alone ms", "among 16,384 ms", "ratio"], rows)


def wire(entries):
    """Capture to capture."""
    rows = [
        [entry.name + " " + str(n), f"{entry.figures['copies_a_frame']:.1f}"]
        + [f"{entry.figures['bare']:.1f}", f"{entry.figures['pipeline']:.1f}"]
        + [spread(entry.figures, "speed")]
        for n, entry in zip(("IPv4", "IPv6"), entries)
    ]
    return table(["capture", "copies", "libpcap alone ms", "pipeline ms", "speed"], rows)


def whole(entries):
    """CPU time and memory of whole processes."""
    rows = [
        [" ".join([entry.name, *entry.words]), f"{entry.seconds * 1000:.1f}"]
        + [f"{entry.figures['mebibytes']:.0f}"]
        for entry in entries
    ]
    return table(["program", "CPU ms", "MiB"], rows)


def calls(entries):
    """The calls that an event causes, and the fewest."""
    rows = [
        [entry.label, entry.variant]
        + [f"{entry.figures['calls']:.0f}", f"{entry.figures['fewest']:.0f}"]
        + [f"{entry.figures['calls'] / entry.figures['fewest']:.1f}"]
        for entry in entries
    ]
    return table(["event", "variant", "calls", "fewest", "ratio"], rows)


def plain(entries):
    """Whatever Google Benchmark tells of each."""
    rows = [
        [entry.name + "".join(f" {value}" for value in entry.arguments.values())]
        + [f"{entry.seconds * 1e9:.1f}", f"{entry.rate:,.0f}" if entry.rate else "-"]
        for entry in entries
    ]
    return table(["benchmark", "ns", "a second"], rows)


TOLD = {
    "calls": calls,
    "growth": growth,
    "locality": locality,
    "programming": programming,
    "whole": whole,
    "wire": wire,
}


def told(program, entries):
    """The table of a program, and what has failed."""
    good = [entry for entry in entries if not entry.error]
    text = TOLD.get(program, plain)(good)
    for entry in entries:
        if entry.error:
            text += f"\n   {entry.name} FAILED: {entry.error}"
    return text
