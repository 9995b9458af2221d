# Which VTEPs are without protection now, and why?
COLUMNS=80 vornal show scenarios/tcam-full/scenario.yaml vteps "$@"
