# Why did this frame not leave by Ethernet3?
COLUMNS=80 vornal explain scenarios/two-leaves/scenario.yaml 136 --interface Ethernet3 "$@"
