"""What a soak tells at its end."""

HEAD = ("technique", "tried", "", "core s", "a core s", "of goal", "found")


def clock(seconds):
    """Minutes and seconds."""
    return f"{int(seconds) // 60}:{int(seconds) % 60:02}"


def per_second(tried, seconds):
    """A rate, with a place behind the point where it is small."""
    if not seconds or not tried:
        return "-"
    rate = tried / seconds
    return f"{rate:,.0f}" if rate >= 10 else f"{rate:.2f}"


def remark_of(one):
    """What did not fit, or why there is nothing."""
    if one.remark:
        return one.remark
    left = int(one.goal - one.tried)
    return f"{left:,} of {int(one.goal):,} did not fit" if left > 0 else ""


def row_of(one):
    """The cells of a technique."""
    return (one.name, f"{one.tried:,}", one.unit, f"{one.seconds:,.0f}",
            per_second(one.tried, one.seconds), f"{100 * one.tried / one.goal:.0f} %",
            str(one.found), remark_of(one))


def told(techniques, seed, seconds):
    """The table, as text."""
    rows = [HEAD + ("",)] + [row_of(one) for one in techniques]
    widths = [max(len(row[at]) for row in rows) for at in range(len(rows[0]))]
    is_text = (0, 2, 7)
    lines = [f"== soak: {clock(seconds)} min, SOAK_SEED={seed}"]
    for row in rows:
        cells = [cell.ljust(width) if at in is_text else cell.rjust(width)
                 for at, (cell, width) in enumerate(zip(row, widths))]
        lines.append("  ".join(cells).rstrip())
    return "\n".join(lines)
