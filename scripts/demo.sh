#!/usr/bin/env bash
# Builds the command-line tool and shows the bundled sample layout as the item grids list it.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup.sh
cmake --preset release >/dev/null
cmake --build --preset release --target kestrin
build/release/apps/cli/kestrin info examples/layouts/Visitors16K.IIF \
    --project examples/project/Sample.ini --lang examples/lang/kestrin-en.txt "$@"
