#!/usr/bin/env bash
# Builds Kestrin and runs every test: the debug build, the same tests under AddressSanitizer
# and UndefinedBehaviorSanitizer, the core alone without Qt, the core and the tool cross-built
# for Windows with their tests under Wine, and the ActiveX control with the widgets, the demo host
# and the Windows package (Qt for Windows from ../shared/qt-windows, see cmake/qt-windows.cmake)
# driven by COM hosts under Wine; the benchmarks are built to keep them compiling.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
jobs=$(nproc)
export QT_QPA_PLATFORM=offscreen
for preset in dev asan core windows windows-qt; do
    echo "== $preset"
    cmake --preset "$preset" >/dev/null
    cmake --build --preset "$preset" -j "$jobs"
    ctest --preset "$preset" -j "$jobs"
done
echo "== release (benchmarks build)"
cmake --preset release >/dev/null
cmake --build --preset release -j "$jobs"
