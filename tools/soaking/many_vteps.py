"""A scenario of a switch with thousands of VTEPs, which come, change and go."""

UNITS = 4
PORT_CHANNELS = 16  # each with a port on each unit


def scenario(variant, count):
    """The text. Each VTEP shares one port channel with the switch, for a step two."""
    vteps = [f"10.1.{number >> 8}.{number & 255}" for number in range(count)]
    lines = ["scenario: many-vteps", "switch:", "  name: leaf1", f"  variant: {variant}",
             "  units:", *(f"    {unit}: {{ module: {4 * unit + 1} }}" for unit in range(UNITS)),
             f"  tcam: {{ ingress: {2 * count + 8}, egress: {2 * count + 64} }}",
             f"  class-ids: {{ first: 1, last: {count} }}", "  interfaces:"]
    for number in range(UNITS * PORT_CHANNELS):
        unit, port = divmod(number, PORT_CHANNELS)
        lines.append(f"    Ethernet{number + 1}: {{ unit: {unit}, port: {port + 1} }}")
    lines.append("  port-channels:")
    for number in range(PORT_CHANNELS):
        members = [f"Ethernet{unit * PORT_CHANNELS + number + 1}" for unit in range(UNITS)]
        lines.append(f"    Port-Channel{number + 1}: [ {', '.join(members)} ]")
    lines += ["steps:", *(f"  - {step}" for step in steps(vteps))]
    return "\n".join(lines) + "\n"


def steps(vteps):
    """They come, get other virtual ports, share a second port channel, leave the first; half of
    them lose their virtual ports; the segments go, and the others' virtual ports."""
    half = vteps[:len(vteps) // 2]
    ports = ", ".join(f"Port-Channel{number + 1}" for number in range(PORT_CHANNELS))
    return ["ready: subagents::l2Ready",
            f"publish: {{ {virtual_ports(vteps, 1)} }}",
            f"publish: {{ {segments(vteps, 0)} }}",
            f"publish: {{ {virtual_ports(vteps, 20001)} }}",
            f"publish: {{ {segments(vteps, 1)} }}",
            f"withdraw: {{ {segments(vteps, 0)} }}",
            f"withdraw: {{ vteps: [ {', '.join(half)} ] }}",
            f"withdraw: {{ segments: [ {ports} ] }}",
            f"withdraw: {{ vteps: [ {', '.join(vteps[len(half):])} ] }}"]


def virtual_ports(vteps, first):
    """Of all VTEPs, numbers in a row."""
    each = [f"{vtep}: {{ virtual-port: {first + number} }}" for number, vtep in enumerate(vteps)]
    return f"vteps: {{ {', '.join(each)} }}"


def segments(vteps, shift):
    """Each VTEP on a port channel; with another shift on another one."""
    each = []
    for number in range(PORT_CHANNELS):
        on_it = [vtep for at, vtep in enumerate(vteps) if (at + shift) % PORT_CHANNELS == number]
        each.append(f"Port-Channel{number + 1}: [ {', '.join(on_it)} ]")
    return f"segments: {{ {', '.join(each)} }}"
