#!/bin/sh
# Runs a Windows program under Wine (WINE, WINESERVER and WINEPREFIX come from the caller).
# The Wine server and its background programs are started first, with no output attached:
# started by the program itself, they would hold its output open, and ctest would wait for
# them to end after every test. The server stays 30 seconds after its last program.
flock -o "$WINEPREFIX/.session-lock" sh -c '
    if "$WINESERVER" -p30 </dev/null >/dev/null 2>&1; then
        "$WINE" cmd /c exit </dev/null >/dev/null 2>&1
    fi'
exec "$WINE" "$@"
