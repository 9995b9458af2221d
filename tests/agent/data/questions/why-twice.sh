# Why did this frame reach the host on Ethernet3 twice?
COLUMNS=80 vornal explain scenarios/tcam-full/scenario.yaml 2 --interface Ethernet3 "$@"
