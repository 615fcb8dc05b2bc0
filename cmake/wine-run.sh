#!/bin/sh
# wine-run.sh PROGRAM [ARGUMENT...]: runs a Windows program. What is set already is left as it is.
set -eu
compiler=x86_64-w64-mingw32-g++-posix
folder() { dirname "$($compiler -print-file-name="$1")"; }

: "${WINEPREFIX:=$(cd "$(dirname "$0")/.." && pwd)/build/wine}"
: "${WINEDEBUG:=-all}"
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}"
# The compiler's own libraries. A program that misses one ends with 53 and without a word.
: "${WINEPATH:=Z:$(folder libstdc++-6.dll);Z:$(folder libwinpthread-1.dll)}"
LC_ALL=C.UTF-8 # Wine takes file names outside ASCII from it
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES WINEPATH LC_ALL
unset DISPLAY
mkdir -p "$WINEPREFIX"
exec wine "$@"
