#!/usr/bin/env bash
# Mutation testing of src/core and src/widgets: a fixed, seeded sample of mutants, each
# built and tested in build/mutants; prints killed, survived, timed out and not compiled,
# and the survivors. Options: --count N (200), --seed S (1), --seeds S,S,... (each seed's
# sample, scored each and in all), --list, --only ID[,ID...], --factor F, --which-tests (run
# every test of each mutant and name those that kill it).
set -euo pipefail
cd "$(dirname "$0")/.."
command -v python3 >/dev/null || { echo "mutants: python3 is missing (scripts/setup.sh installs it)" >&2; exit 2; }
exec nice -n 5 python3 scripts/mutants.py "$@"
