#!/bin/sh
# Compares the device binary's interface with the dump of 1.0.0 in tests/binary, as a component that
# was compiled against that would meet it: exports, types, layout. check-abi.sh [--update] [LIBRARY]
#
# LIBRARY has debug information and libc++'s types, as a phone has; without one, it is built. JsonCpp
# stays open in it: the packaged one has libstdc++'s types. --update writes the dump anew. Needs
# abidw and abidiff (abigail-tools), Clang with libc++, lld, cmake and ninja.
set -eu
cd "$(dirname "$0")/.."

dump=tests/binary/libkcodec2_platform.abi
build=build/abi

# Types from outside the exported headers are kept by name alone: another release of the C++ library
# may call its own members otherwise. Their sizes show in the offsets around them.
own_types="--headers-dir include --drop-private-types"

compiler=$(command -v clang++ || command -v clang++-14)
update=false
if [ "${1:-}" = --update ]; then
    update=true
    shift
fi
library=${1:-$build/libkcodec2_platform.so}

if [ $# -eq 0 ]; then
    echo "Building the device's library with debug information"
    mkdir -p "$build"
    {
        cmake -S . -B "$build" -G Ninja -DKC2_PLATFORM=device -DBUILD_TESTING=OFF \
            -DCMAKE_BUILD_TYPE=Debug -DCMAKE_CXX_COMPILER="$compiler" \
            -DCMAKE_CXX_FLAGS=-stdlib=libc++ -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld \
            -DCMAKE_CXX_STANDARD_LIBRARIES=-Wl,--unresolved-symbols=ignore-all &&
            cmake --build "$build" --target kcodec2_platform
    } > "$build/log" 2>&1 || { cat "$build/log"; exit 1; }
fi

if $update; then
    # shellcheck disable=SC2086  # Options, to be split.
    abidw $own_types --exported-interfaces-only --drop-undefined-syms --no-elf-needed \
        --no-comp-dir-path --no-corpus-path --no-show-locs --type-id-style hash \
        --out-file "$dump" "$library"
    echo "check-abi: $dump is written; say in CHANGELOG.md, in the same commit, what changed for" \
        "components that are compiled already"
    exit 0
fi

# shellcheck disable=SC2086
if ! abidiff --headers-dir2 include --drop-private-types --exported-interfaces-only "$dump" \
    "$library"; then
    echo "check-abi: components that are compiled against the interface in $dump would notice the" \
        "changes above. If they are wanted: scripts/check-abi.sh --update, and a line in" \
        "CHANGELOG.md in the same commit" >&2
    exit 1
fi
echo "check-abi: the interface is that of $dump"
