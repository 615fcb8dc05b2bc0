#!/bin/sh
# boost-thread-source.sh FOLDER: puts the sources of Boost.Thread for Windows into FOLDER, taken from
# the Debian source package that belongs to the installed headers. The package's index and archive
# stay in FOLDER too and are removed at the end; the machine's own package lists are not touched.
set -eu
rm -rf "$1/package"
mkdir -p "$1/package/sources" "$1/package/lists/partial"
cd "$1/package"

# The machine's own mirrors, asked for sources instead of binaries.
for file in /etc/apt/sources.list /etc/apt/sources.list.d/*.list /etc/apt/sources.list.d/*.sources; do
    [ -f "$file" ] || continue
    sed -E -e 's/^deb /deb-src /' -e 's/^(Types:).*/\1 deb-src/' "$file" \
        >"sources/$(basename "$file")"
done

apt() {
    apt-get -q -o Dir::Etc::SourceList=/dev/null -o Dir::Etc::SourceParts="$PWD/sources" \
        -o Dir::State::Lists="$PWD/lists" -o Dir::Cache="$PWD" -o APT::Sandbox::User=root "$@"
}
apt update || : # a mirror without sources is no reason to stop while another one has them
apt source --download-only --only-source boost1.81

tar -xJf boost1.81_*.orig.tar.xz --strip-components=4 -C "$1" --wildcards \
    '*/libs/thread/src/future.cpp' '*/libs/thread/src/win32/*.cpp'
rm -r "$1/package"
