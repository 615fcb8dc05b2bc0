#!/bin/sh
# wine-run.sh PROGRAM [ARGUMENT...]: what CTest starts a Windows program with.
. "$(dirname "$0")/wine-env.sh"
exec wine "$@"
