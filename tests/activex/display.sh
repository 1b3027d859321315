#!/bin/sh
# display.sh start|stop FILE: starts an Xvfb server on a free display, its number in FILE and its
# process id in FILE.pid, or stops it again. Starting ends the Wine session of WINEPREFIX first,
# when WINESERVER is given.
set -eu
file=$2
case $1 in
start)
    if [ -n "${WINESERVER:-}" ]; then "$WINESERVER" -k 2>/dev/null || true; fi
    rm -f "$file" "$file.pid"
    Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$file" >/dev/null 2>&1 &
    echo $! >"$file.pid"
    for _ in $(seq 100); do
        [ -s "$file" ] && exit 0
        sleep 0.1
    done
    echo "Xvfb did not start" >&2
    exit 1 ;;
stop)
    [ -f "$file.pid" ] && kill "$(cat "$file.pid")" 2>/dev/null || true
    rm -f "$file" "$file.pid" ;;
esac
