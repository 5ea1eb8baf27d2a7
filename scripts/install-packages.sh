#!/bin/sh
# Installs the Debian packages that a set needs and that are missing: install-packages.sh run|test
#
# The names carry no version, so that they serve Debian 12 and 13 alike. "run" builds the library
# and the tool; "test" is what scripts/test.sh needs beyond that.
set -eu

run="ca-certificates cmake g++ libcli11-dev libfmt-dev libjsoncpp-dev ninja-build"

# Compilers for this machine; the style tools; sanitizers.
test="clang clang-format clang-tidy libclang-rt-dev lld pkg-config"
# A phone's C++ library, and the sources of what is built for it.
test="$test googletest libc++-dev libc++abi-dev libgtest-dev"
# A phone's processors.
test="$test g++-aarch64-linux-gnu g++-arm-linux-gnueabihf qemu-user-static"
# The platform's build system and libraries.
test="$test android-liblog-dev blueprint-tools golang-android-soong-dev
    golang-github-golang-protobuf-1-3-dev golang-github-google-blueprint-dev golang-go"
# Benchmarks; proofs about the binary and the load; documents.
test="$test libsimdjson-dev rapidjson-dev
    abigail-tools binutils llvm python3 relacy-dev valgrind
    chromium doxygen"
# The Debian packages, their manual page and completions; an editor.
test="$test dpkg-dev file groff neovim zsh"
# Hooks, and the Markdown that the tool prints.
test="$test cmark-gfm git pre-commit python3-yaml"

case "${1:-}" in
    run) packages=$run ;;
    test) packages="$run $test" ;;
    *) echo "usage: install-packages.sh run|test" >&2; exit 2 ;;
esac

is_installed() {
    dpkg-query -W -f '${Status}' "$1" 2>/dev/null | grep -q '^install ok installed$'
}

missing=
for package in $packages; do
    is_installed "$package" || missing="$missing $package"
done
# Node often comes from elsewhere than Debian.
if [ "$1" = test ]; then
    command -v node > /dev/null || missing="$missing nodejs"
    command -v npm > /dev/null || missing="$missing npm"
fi
[ -n "$missing" ] || exit 0

as_root=
[ "$(id -u)" -eq 0 ] || as_root=sudo
log=$(mktemp)
trap 'rm -f "$log"' EXIT

# Package lists, archives and installation: apt's output goes into a file, shown when it fails.
quietly() {
    "$@" > "$log" 2>&1 || { cat "$log" >&2; echo "install-packages.sh: failed: $*" >&2; exit 1; }
}

echo "Reading Debian's package lists"
quietly $as_root apt-get update
# shellcheck disable=SC2086  # A list of packages, to be split.
set -- apt-get install --no-install-recommends $missing
count=$("$@" --simulate | grep -c '^Inst ') || { "$@" --simulate; exit 1; }
echo "Installing $(echo "$missing" | wc -w) packages that are missing ($count with what they need):"
echo "$missing" | fold -s -w 100
# What apt says of the cost before it asks whether to go on.
{ $as_root env LC_ALL=C "$@" --assume-no || true; } 2>&1 |
    sed -n 's/^Need to get .*/  &/p; s/^After this operation, .* used\.$/  &/p'
$as_root env DEBIAN_FRONTEND=noninteractive LC_ALL=C "$@" -y 2>&1 | tee "$log" |
    "$(dirname "$0")/progress.sh" apt "$count"
# The pipe hides how apt ended: what counts is that the packages are there.
for package in $missing; do
    is_installed "$package" || {
        cat "$log" >&2
        echo "install-packages.sh: $package is not installed" >&2
        exit 1
    }
done
