# Which state caused rule 5?
COLUMNS=80 vornal show scenarios/two-leaves-class-id/scenario.yaml rules --entry 5 "$@"
