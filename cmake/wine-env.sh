# Sourced: the environment in which Windows programs run here. Set what is to be otherwise before.
wine_compiler=x86_64-w64-mingw32-g++-posix
: "${WINEPREFIX:=${TMPDIR:-/tmp}/wineprefix-$(id -u)}"
: "${WINEDEBUG:=-all}"
: "${WINEDLLOVERRIDES:=mscoree,mshtml=}"
# Where the compiler's own libraries are: a program that misses one ends with 53 and no text.
: "${WINEPATH:=Z:$(dirname "$($wine_compiler -print-file-name=libstdc++-6.dll)");Z:/usr/x86_64-w64-mingw32/lib}"
LC_ALL=C.UTF-8 # otherwise names outside ASCII are lost
export WINEPREFIX WINEDEBUG WINEDLLOVERRIDES WINEPATH LC_ALL
unset DISPLAY
