#!/usr/bin/env bash
# Builds Kestrin and starts the demo host with the bundled sample project. Without a display
# it runs the demo's tour script offscreen and shows the sample layout with the command-line tool.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target kestrin-host kestrin
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    exec build/release/apps/host/kestrin-host "$@"
fi
echo "No display: running the demo host's tour script offscreen instead."
work=$(mktemp -d)
(cd "$work" && QT_QPA_PLATFORM=offscreen "$OLDPWD/build/release/apps/host/kestrin-host" --work "$work" \
    --script "$OLDPWD/examples/host/tour.script")
build/release/apps/cli/kestrin info examples/layouts/Visitors16K.IIF \
    --project examples/project/Sample.ini --lang examples/lang/kestrin-en.txt
