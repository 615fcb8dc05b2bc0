# Shared by ./run and ./test. Sourced, with the project's folder as the working directory.

# install PACKAGE...: installs those Debian packages that are missing.
install() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return
    echo "installing: ${missing[*]}"
    # Package lists may be absent or old; a second try with fresh ones settles it.
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" \
        >/dev/null 2>&1 && return
    apt-get update >/dev/null
    DEBIAN_FRONTEND=noninteractive apt-get install -y --no-install-recommends "${missing[@]}" \
        >/dev/null
}

native_packages=(g++ cmake ninja-build libboost1.81-dev libboost-thread1.81-dev
    libcli11-dev libspdlog-dev libssl-dev libsodium-dev libsqlite3-dev zlib1g-dev libffi-dev
    libgmock-dev libbenchmark-dev python3 unicode-data)
test_packages=(prometheus)  # for promtool
lint_packages=(clang-14)
fuzz_packages=(clang-14 libclang-rt-14-dev)
page_packages=(chromium fonts-dejavu-core fonts-wqy-microhei)
package_packages=(mmdebstrap dpkg-dev file curl git)
windows_packages=(g++-mingw-w64-x86-64-posix libz-mingw-w64-dev wine wine64 xz-utils curl unzip)

# say WHAT: the part of a step that begins now.
say() {
    echo "-- $*"
}

# build PRESET [TARGET...]
build() {
    local preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
    say "building $preset"
    cmake --build --preset "$preset" ${*:+--target "$@"}
}

# start_wine: one Wine server for all that follows, until the script ends. Without it every test
# would start one of its own, which takes 2 seconds.
start_wine() {
    export WINEPREFIX=${WINEPREFIX:-$PWD/build/wine}
    mkdir -p "$WINEPREFIX"
    trap 'wineserver -k >/dev/null 2>&1 || :' EXIT
    wineserver -p >/dev/null 2>&1 </dev/null || : # runs already
    cmake/wine-run.sh cmd /c exit >/dev/null 2>&1 </dev/null
}
