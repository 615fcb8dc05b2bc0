#!/usr/bin/env bash
# tests/package/windows.sh BUILD: makes the ZIP of a Windows build, and starts what is in it under Wine,
# from a folder where nothing else is. Wine is ready (start_wine).
set -euo pipefail
cd "$(dirname "$0")/../.."
. scripts/common.sh
build=$(realpath "$1")
work=build/package
port=9168
source=$PWD

fail() {
    echo "$0: $*" >&2
    exit 1
}

say "making the ZIP"
rm -rf "$work/zip"
mkdir -p "$work/zip"
cpack --config "$build/CPackConfig.cmake" -B "$work/zip" >"$work/cpack.log" || {
    cat "$work/cpack.log"
    fail "no ZIP"
}
rm -rf "$work/zip/_CPack_Packages"
ls -sh "$work/zip"
unzip -q "$work"/zip/*.zip -d "$work/zip"

say "running it"
cd "$work"/zip/*/
cp share/hmi-server/demo/*.json .
"$source/cmake/wine-run.sh" bin/hmi-server.exe --extension bin/ZrHmiEventLogger.dll --config config.json \
    --plant plant.json --port $port >../output 2>../log </dev/null &
server=$!
trap 'kill $server 2>/dev/null || :' EXIT
ask() {
    curl --silent --fail --retry 20 --retry-connrefused --retry-delay 1 \
        "http://127.0.0.1:$port$1"
}
ask /readyz >/dev/null || { cat ../log; fail "does not start"; }
ask / | grep -q '<html' || fail "no page"
for _ in {1..100}; do
    ask /api/targets | grep -q '"good"' && break
    sleep 0.1
done
ask /api/events | grep -q '"kind":"alarm"' || fail "no alarm of the demo plant"
