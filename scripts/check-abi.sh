#!/bin/sh
# Compares the device binary's interface with the reference dump in tests/binary, so that compiled
# components keep working: exports, types, layout. check-abi.sh [--update]
#
# Builds the library with debug information and libc++, as on a phone, and without linking JsonCpp,
# since Debian's has libstdc++'s types. --update rewrites the dump. Needs abidw and abidiff
# (abigail-tools), Clang with libc++, lld, cmake and ninja.
set -eu
cd "$(dirname "$0")/.."

dump=tests/binary/libkcodec2_platform.abi
build=build/abi
current=$build/current.abi

case "$*" in
    '' | --update) ;;
    *) echo "usage: check-abi.sh [--update]" >&2; exit 2 ;;
esac

echo "Building the device's library with debug information"
mkdir -p "$build"
# With link-time optimisation, a class is described once. Without it, abidw knows a class as the first
# source file has it, without the functions that later files define.
{
    cmake -S . -B "$build" -G Ninja -DKC2_PLATFORM=device -DBUILD_TESTING=OFF \
        -DCMAKE_BUILD_TYPE=RelWithDebInfo -DCMAKE_CXX_COMPILER=clang++ \
        -DCMAKE_CXX_FLAGS="-stdlib=libc++ -flto" -DCMAKE_SHARED_LINKER_FLAGS=-fuse-ld=lld \
        -DCMAKE_CXX_STANDARD_LIBRARIES=-Wl,--unresolved-symbols=ignore-all &&
        cmake --build "$build" --target kcodec2_platform
} > "$build/log" 2>&1 || { cat "$build/log"; exit 1; }

# Of types from outside the exported headers, only the name is kept: the names of their members change
# between releases of the C++ library. Their sizes show in the offsets around them.
cat > "$build/suppressions" << 'SUPPRESSIONS'
[suppress_type]
  name_regexp = ^std::
  drop = yes
SUPPRESSIONS
abidw --suppressions "$build/suppressions" --headers-dir include --drop-private-types \
    --drop-undefined-syms --no-elf-needed --no-comp-dir-path --no-corpus-path --no-show-locs \
    --type-id-style hash --out-file "$current" "$build/libkcodec2_platform.so"

# An export without a type would always pass as unchanged.
for symbol in $(sed -n "s/.*<elf-symbol name='\([^']*\)'.*is-defined='yes'.*/\1/p" "$current"); do
    grep -q "mangled-name='$symbol'" "$current" || {
        echo "check-abi: the dump has no type for $symbol" >&2
        exit 1
    }
done

if [ $# -eq 1 ]; then
    sed "s#path='$PWD/#path='#" "$current" > "$dump"  # The same in every directory.
    echo "check-abi: $dump is written; say in CHANGELOG.md, in the same commit, what changes for" \
        "components that are compiled already"
    exit 0
fi

if ! abidiff --harmless "$dump" "$current"; then
    echo "check-abi: compiled components would notice the changes above." \
        "If they are wanted: scripts/check-abi.sh --update, and a line in CHANGELOG.md in the" \
        "same commit" >&2
    exit 1
fi
echo "check-abi: the interface is that of $dump"
