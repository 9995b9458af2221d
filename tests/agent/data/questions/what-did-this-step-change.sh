# What did step 7 change?
COLUMNS=80 vornal diff scenarios/limits/port-given-on/scenario.yaml --after 6 --against 7 "$@"
