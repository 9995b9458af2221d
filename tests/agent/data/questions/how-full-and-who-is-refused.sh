# How full is each group, and who is refused?
COLUMNS=80 vornal show scenarios/tcam-full/scenario.yaml tcam "$@"
