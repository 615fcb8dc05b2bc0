#!/bin/sh
# wine-run.sh PROGRAM [ARGUMENT...]: runs a Windows program. What is set already is left as it is.
set -eu
: "${WINEPREFIX:=$(cd "$(dirname "$0")/.." && pwd)/build/wine}"
: "${WINEDEBUG:=-all}"
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}" # asks for no further packages
LC_ALL=C.UTF-8                           # Wine takes file names outside ASCII from it
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES LC_ALL
unset DISPLAY
mkdir -p "$WINEPREFIX"
exec wine "$@"
