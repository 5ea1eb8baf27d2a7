#!/bin/sh
# Installs the Debian packages that a set needs and that are missing: install-packages.sh run|test
set -eu

run="ca-certificates cmake g++ ninja-build libjsoncpp-dev libcli11-dev"
test="clang-14 clang-format-14 clang-tidy-14 lld-14 libclang-rt-14-dev libc++-14-dev
      libc++abi-14-dev g++-12 g++-aarch64-linux-gnu pkg-config binutils python3 valgrind doxygen
      blueprint-tools libgtest-dev libbenchmark-dev libsimdjson-dev rapidjson-dev
      relacy-dev android-liblog-dev abigail-tools"

case "${1:-}" in
    run) packages=$run ;;
    test) packages="$run $test" ;;
    *) echo "usage: install-packages.sh run|test" >&2; exit 2 ;;
esac

missing=
for package in $packages; do
    dpkg-query -W -f '${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
        missing="$missing $package"
done
[ -n "$missing" ] || exit 0

as_root=
[ "$(id -u)" -eq 0 ] || as_root=sudo
echo "Installing:$missing"
export DEBIAN_FRONTEND=noninteractive
$as_root apt-get update -qq
# shellcheck disable=SC2086  # A list of packages, to be split.
$as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends $missing \
    > /dev/null
