# What would happen if VTEP 10.0.0.2 left its segment?
COLUMNS=80 vornal run scenarios/two-leaves/scenario.yaml --what-if 'withdraw: { segments: { Port-Channel2: [ 10.0.0.2 ] } }' "$@"
