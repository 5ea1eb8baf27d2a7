#!/bin/sh
# Without CLI11 or {fmt}, the library is still built, and the build says why the tool is not.
set -eu
cd "$(dirname "$0")/.."

fail() {
    cat "$build.log" >&2
    echo "check-no-tool.sh: $1" >&2
    exit 1
}

mkdir -p build
for package in CLI11 fmt; do
    build=build/no-$package
    cmake --preset dev -B "$build" -DBUILD_TESTING=OFF -DCMAKE_DISABLE_FIND_PACKAGE_$package=ON \
        > "$build.log" 2>&1 || fail "without $package the tree is not configured"
    grep -q "kcodec2_spec is not built" "$build.log" || fail "the build does not report that $package is missing"
done
cmake --build "$build" > "$build.log" || fail "the library is not built"
[ ! -e "$build/kcodec2_spec" ] || fail "the tool was built without $package"
scripts/check-binary.py "$build/libkcodec2_platform.so"
echo "check-no-tool.sh: the library is built without the tool"
