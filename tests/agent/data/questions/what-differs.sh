# What differs between these two switches?
COLUMNS=100 vornal diff scenarios/two-leaves/scenario.yaml scenarios/four-vteps/scenario.yaml --only published --only rules "$@"
