#!/bin/sh
# with-display.sh FILE COMMAND...: runs the command on the X display whose number FILE holds, with
# Qt's own platform for that system (not the offscreen one the other tests may ask for).
file=$1
shift
DISPLAY=:$(cat "$file")
export DISPLAY
unset QT_QPA_PLATFORM
exec "$@"
