#!/usr/bin/env bash
# tests/package/debian.sh BUILD: makes the Debian packages of a build and tries them in a bare
# Debian 12 of their own: installed, asked over HTTP as the service's user, used to build an
# extension, removed and purged. The system is kept in build/package and made anew each week.
set -euo pipefail
cd "$(dirname "$0")/../.."
. scripts/common.sh
build=$(realpath "$1")
work=build/package
root=$work/root
port=9169

mkdir -p "$work"
if [ -z "$(find "$work/debian.tar" -mtime -7 2>/dev/null)" ]; then
    say "making a bare Debian 12"
    mmdebstrap --quiet --format=tar --variant=minbase --include=systemd,systemd-sysv --skip=cleanup/apt \
        bookworm "$work/debian.tar.new"
    mv "$work/debian.tar.new" "$work/debian.tar"
fi

say "making the packages"
rm -rf "$work/deb"
cpack --config "$build/CPackConfig.cmake" -B "$work/deb" >"$work/cpack.log" || {
    cat "$work/cpack.log"
    exit 1
}
rm -rf "$work/deb/_CPack_Packages"
ls -sh "$work/deb"

server=
stop() {
    if [ -n "$server" ]; then
        kill "$server" && wait "$server"
        server=
    fi
}
clean_up() {
    stop || :
    umount "$root/proc" 2>/dev/null || :
    rm -rf --one-file-system "$root"
}
trap clean_up EXIT
rm -rf --one-file-system "$root"
mkdir "$root"
tar -xf "$work/debian.tar" -C "$root"
mount -t proc proc "$root/proc" 2>/dev/null || say "without /proc"
cp /etc/resolv.conf "$root/etc/"
cp "$work"/deb/*.deb "$root/tmp/"

inside() {
    DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 chroot "$root" "$@"
}
fail() {
    echo "$0: $*" >&2
    exit 1
}
ask() {
    curl --silent --fail --retry 20 --retry-connrefused --retry-delay 1 \
        "http://127.0.0.1:$port$1"
}

add() {
    inside apt-get install -y --no-install-recommends "$@" >"$work/install.log" 2>&1 || {
        cat "$work/install.log"
        fail "cannot be installed: $*"
    }
}

say "installing"
add "/tmp/$(basename "$work"/deb/hmi-server_*.deb)"
[ "$(inside stat -c %U:%a /var/lib/hmi-server/config.json)" = hmi-server:640 ] ||
    fail "the configuration is not the service's"
[ -L "$root/etc/systemd/system/multi-user.target.wants/hmi-server.service" ] ||
    fail "the service is not enabled"
inside systemd-analyze verify --man=no hmi-server.service
version=$(sed -n 's/^project(.* VERSION \([0-9.]*\) .*/\1/p' CMakeLists.txt)
[ "$(inside hmi-server --version)" = "hmi-server $version" ] || fail "another version"

say "running as the unit says"
unit() {
    sed -n "s/^$1=//p" "$root/lib/systemd/system/hmi-server.service"
}
start() {
    chroot "$root" setpriv --reuid "$(unit User)" --regid "$(unit Group)" --clear-groups \
        --no-new-privs --bounding-set=-all /usr/bin/env -C / \
        $(grep -v '^#' "$root$(unit EnvironmentFile)") HMI_PORT=$port "$@" $(unit ExecStart) \
        >"$work/output" 2>"$work/log" &
    server=$!
}
start
ask /readyz >/dev/null || { cat "$work/log"; fail "does not start"; }
ask / | grep -q '<html' || fail "no page"
curl --silent --fail -X PUT "http://127.0.0.1:$port/api/config/TIMEOUT" -d '"PT7S"' >/dev/null
grep -q PT7S "$root/var/lib/hmi-server/config.json" || fail "a change is not kept"
stop || fail "does not end in order"
start HMI_PLANT=/usr/share/hmi-server/demo/plant.json HMI_CONFIG=/usr/share/hmi-server/demo/config.json
ask /readyz >/dev/null
for _ in {1..100}; do
    ask "/api/targets" | grep -q '"good"' && break
    sleep 0.1
done
ask /api/events | grep -q '"kind":"alarm"' || fail "no alarm of the demo plant"
stop || fail "does not end in order"

say "the documents' commands"
add "/tmp/$(basename "$work"/deb/libzrhmisrvext-dev_*.deb)" curl openssl cmake g++ make
start HMI_PLANT=/usr/share/hmi-server/demo/plant.json
ask /readyz >/dev/null
tests/package/documents.py system $port "$root"
stop || fail "does not end in order"

say "removing"
inside apt-get purge -y hmi-server >"$work/remove.log" 2>&1 || { cat "$work/remove.log"; fail "cannot be removed"; }
left=$(inside find / -xdev \( -path /proc -o -path /tmp -o -path /root -o -path /var/cache -o -path /var/lib/dpkg \
    -o -path /var/log \) -prune -o -name '*hmi-server*' -print -o -name '*ZrHmi*' -print)
[ -z "$left" ] || fail "left behind: $left"
! grep -q '^hmi-server:' "$root/etc/passwd" || fail "the user is left behind"
