# Which frames were kept back, by VTEP and port?
COLUMNS=80 vornal show scenarios/side-by-side/scenario.yaml counters "$@"
