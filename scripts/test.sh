#!/usr/bin/env bash
# Builds Kestrin and runs every test: the debug build, then the same tests under
# AddressSanitizer and UndefinedBehaviorSanitizer; the benchmarks are built to keep them compiling.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
jobs=$(nproc)
for preset in dev asan; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs"
done
echo "== release (benchmarks build)"
cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs"
