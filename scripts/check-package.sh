#!/bin/sh
# Installs a build into a scratch directory, moves it, and lets a consumer outside the tree stand on
# it, through CMake and through pkg-config: check-package.sh [BUILD-DIRECTORY]
#
# The build directory is one of a host build (default: build/dev). Needs cmake, ninja, pkg-config
# and a C++ compiler. Takes ten seconds.
set -eu

export CMAKE_GENERATOR=Ninja  # Which the packages for the tests bring; make need not be there.
source=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$source/build/dev}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "check-package: $*" >&2
    exit 1
}

quietly() {
    "$@" > "$scratch/log" 2>&1 || { cat "$scratch/log" >&2; fail "failed: $*"; }
}

# run_consumer PROGRAM: it runs, and prints what it must.
run_consumer() {
    "$1" 2> "$scratch/log" > "$scratch/output" || fail "decoder_setup failed"
    diff "$scratch/consumer/decoder_setup.expected" "$scratch/output" || fail "other output"
}

# program_in DOCUMENT: the C++ program that it shows.
program_in() {
    sed -n '/^```cpp$/,/^```$/p' "$source/$1" | sed '/^```/d'
}

echo "Installing, and moving what was installed"
quietly cmake --install "$build" --prefix "$scratch/first-place"
prefix=$scratch/package
mv "$scratch/first-place" "$prefix"

echo "Headers: the seven of the library, and the stand-ins' one in a separate directory"
(cd "$prefix/include" && find . -type f | LC_ALL=C sort) > "$scratch/headers"
diff - "$scratch/headers" << HEADERS || fail "other headers are installed than these"
./kc2/FileDescriptor.h
./kc2/IonInfo.h
./kc2/KC2PlatformVersion.h
./kc2/PixFormat.h
./kc2/TamraBufferLayout.h
./kc2/TargetSpec.h
./kc2/TargetSpecKeys.h
./kcodec2-hostplatform/hostplatform/HostPlatform.h
HEADERS

echo "No path of this machine in the package's files"
if grep -rlIF -e "$source" -e "$build" -e "$scratch" "$prefix"; then
    fail "the files above name a directory of this machine"
fi
libraries=$(dirname "$(find "$prefix" -name libkcodec2_platform.so)")
if readelf -d "$libraries"/*.so | grep -E '(RPATH|RUNPATH).*\[[^]]*/'; then
    fail "a library looks for others in a directory of this machine"
fi

echo "A consumer outside the tree, through CMake"
cp -r "$source/examples/consumer" "$scratch/consumer"
quietly cmake -S "$scratch/consumer" -B "$scratch/consumer-build" -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$scratch/consumer-build"
run_consumer "$scratch/consumer-build/decoder_setup"
(cd "$scratch/consumer-build" && quietly ctest --output-on-failure --no-tests=error)

echo "The same consumer, through pkg-config"
PKG_CONFIG_PATH=$libraries/pkgconfig
export PKG_CONFIG_PATH
for program in decoder_setup decoder_setup_test; do
    # shellcheck disable=SC2046
    quietly "${CXX:-c++}" -std=c++17 "$scratch/consumer/$program.cpp" -o "$scratch/$program" \
        $(pkg-config --cflags --libs kcodec2_platform kcodec2_hostplatform)
done
LD_LIBRARY_PATH=$libraries run_consumer "$scratch/decoder_setup"
LD_LIBRARY_PATH=$libraries quietly "$scratch/decoder_setup_test" "$scratch/consumer/device"

echo "The program in docs/components.md is the consumer's"
program_in docs/components.md | diff - "$source/examples/consumer/decoder_setup.cpp" ||
    fail "another program"

echo "The program of the README"
program_in README.md > "$scratch/readme.cpp"
# shellcheck disable=SC2046
quietly "${CXX:-c++}" -std=c++17 "$scratch/readme.cpp" -o "$scratch/readme" \
    $(pkg-config --cflags --libs kcodec2_platform)
LD_LIBRARY_PATH=$libraries quietly "$scratch/readme"

echo "One version everywhere, and a consumer that asks for another one is told"
version=$(sed -n 's/^#define KC2_VERSION "\(.*\)"/\1/p' "$source/platform/Version.h")
for module in kcodec2_platform kcodec2_hostplatform; do
    found=$(pkg-config --modversion $module)
    [ "$found" = "$version" ] || fail "$module is version $found, not $version"
done
sed 's/kcodec2_platform 1.0 REQUIRED/kcodec2_platform 2.0 REQUIRED/' \
    "$source/examples/consumer/CMakeLists.txt" > "$scratch/consumer/CMakeLists.txt"
if cmake -S "$scratch/consumer" -B "$scratch/other-build" -DCMAKE_PREFIX_PATH="$prefix" \
        > "$scratch/log" 2>&1; then
    fail "version 2.0 was found"
fi
grep -q "version: $version" "$scratch/log" || fail "the message does not name version $version"

if [ -x "$prefix/bin/kcodec2_spec" ]; then
    echo "The tool runs from where it was moved"
    quietly "$prefix/bin/kcodec2_spec" --help
fi
echo "check-package: the package is as it should be"
