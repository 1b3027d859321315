#!/bin/sh
# with-display.sh FILE COMMAND...: runs the command on the X display whose number FILE holds.
file=$1
shift
DISPLAY=:$(cat "$file")
export DISPLAY
exec "$@"
