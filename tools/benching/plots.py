"""Plots of the benchmarks, as SVG."""

import matplotlib

from benching.tables import PHASES, VARIANTS

matplotlib.use("svg")
matplotlib.rcParams["svg.hashsalt"] = "vornal"  # the same figures give the same file
from matplotlib import pyplot  # noqa: E402  pylint: disable=wrong-import-position


def save(figure, path):
    """Writes the figure without the time of its making."""
    figure.tight_layout()
    figure.savefig(path, metadata={"Date": None})
    pyplot.close(figure)


def programming(entries, folder):
    """The ratio of the plug-in to its calls alone, by VTEPs."""
    figure, axes = pyplot.subplots(1, len(PHASES), figsize=(11, 3.6), sharey=True)
    entries = [entry for entry in entries if entry.name == "programming"]
    shapes = sorted(
        {(one.arguments["variant"], one.arguments["units"], one.arguments["ports"])
         for one in entries}
    )
    for axis, phase in zip(axes, PHASES):
        for variant, units, ports in shapes:
            points = [
                (one.arguments["vteps"], one.figures[f"{phase}.ratio"])
                for one in entries
                if (one.arguments["variant"], one.arguments["units"], one.arguments["ports"])
                == (variant, units, ports)
            ]
            axis.plot(
                *zip(*points),
                marker="o",
                markersize=3,
                label=f"{VARIANTS[variant]}, {units} unit{'s' if units > 1 else ''}, {ports} ports",
            )
        axis.axhline(2.0, color="grey", linestyle=":")
        axis.set_xscale("log", base=2)
        axis.set_ylim(bottom=0)
        axis.set_title(phase.replace("_", " "))
        axis.set_xlabel("VTEPs")
    axes[0].set_ylabel("plug-in / its calls alone")
    axes[-1].legend(fontsize=6)
    save(figure, folder / "programming.svg")


def growth(entries, folder):
    """Time a rule of bring-up and removal, and bytes a rule, by VTEPs."""
    figure, axes = pyplot.subplots(1, 3, figsize=(11, 3.2))
    by_vteps = [
        one for one in entries if one.arguments["units"] == 4 and one.arguments["ports"] == 16
    ]
    for variant, name in enumerate(VARIANTS):
        mine = [one for one in by_vteps if one.arguments["variant"] == variant]
        mine = sorted({one.arguments["vteps"]: one for one in mine}.items())
        vteps = [key for key, _ in mine]
        for axis, figure_name, factor in zip(
            axes, ("bring_up", "removal", "bytes"), (1000, 1000, 1)
        ):
            values = [
                factor * one.figures[figure_name] / one.figures["rules"] for _, one in mine
            ]
            axis.plot(vteps, values, marker="o", markersize=3, label=name)
    for axis, title in zip(axes, ("bring up, us a rule", "removal, us a rule", "bytes a rule")):
        axis.set_xscale("log", base=2)
        axis.set_ylim(bottom=0)
        axis.set_title(title)
        axis.set_xlabel("VTEPs")
    axes[0].legend(fontsize=7)
    save(figure, folder / "growth.svg")


def lookup(entries, folder):
    """Time of a lookup, by rules, of each engine."""
    figure, axis = pyplot.subplots(figsize=(5, 3.4))
    for name in sorted({entry.name for entry in entries}):
        points = [
            (one.arguments[""], 1e9 / one.rate) for one in entries if one.name == name and one.rate
        ]
        axis.plot(*zip(*points), marker="o", markersize=3, label=name)
    axis.set_xscale("log", base=2)
    axis.set_yscale("log")
    axis.set_xlabel("rules")
    axis.set_ylabel("ns")
    axis.legend(fontsize=6)
    save(figure, folder / "chip_lookup.svg")


DRAWN = {"programming": programming, "growth": growth, "chip_lookup": lookup}


def draw(program, entries, folder):
    """The plots of a program, if it has any."""
    good = [entry for entry in entries if not entry.error]
    if program in DRAWN and good:
        DRAWN[program](good, folder)
