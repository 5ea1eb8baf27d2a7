#!/bin/sh
# Checks every source file against .clang-format, and the library's against .clang-tidy, with --all
# everything's: check-style.sh [--all]. Needs the preset phone to be built, for its libraries.
#
# Each release of the two tools differs a little, so with any release other than the one below
# this check is skipped and exits with 77. The static analyzer skips the tests, where it would spend most of its time on
# GoogleTest's macros. scripts/test.sh checks the library only: the rest would take a third of its time.
set -eu
cd "$(dirname "$0")/.."

case "$*" in
    '' | --all) ;;
    *) echo "usage: check-style.sh [--all]" >&2; exit 2 ;;
esac

version=14
found=$(clang-tidy --version | sed -n 's/.*version \([0-9]*\)\..*/\1/p')
if [ "$found" != $version ]; then
    reason="needs clang-format and clang-tidy $version, and this machine has ${found:-none}"
    echo "check-style.sh: skipped: $reason"
    echo "$reason" > "${KC2_SKIPPED:-/dev/null}"
    exit 77
fi

# Without git, since a tree that was unpacked from an archive has none.
files=$(find . -path ./build -prune -o \( -name '*.h' -o -name '*.cpp' \) -print)
[ -n "$files" ] || { echo "check-style.sh: the tree has no sources" >&2; exit 1; }
echo "$files" | xargs clang-format-$version --dry-run -Werror
echo "clang-format: $(echo "$files" | wc -l) files are clean"

# configure PRESET: for compile commands of single files; the preset compiles in batches.
configure() {
    cmake --preset "$1" -B "build/style/$1" -DCMAKE_UNITY_BUILD=OFF > /dev/null
}

# compiled PRESET: the files of the tree that it compiles.
compiled() {
    sed -n 's|^ *"file": "'"$PWD"'/\(.*\)",*$|\1|p' "build/style/$1/compile_commands.json" |
        grep -v '^build/' | sort -u
}

# tidy PRESET FILES OPTION...
tidy() {
    build=build/style/$1
    files=$2
    shift 2
    [ -n "$files" ] || { echo "check-style.sh: $build compiles none of the files" >&2; exit 1; }
    echo "$files" | xargs -P "$(nproc)" -n 1 clang-tidy-$version -p "$build" --quiet "$@" 2> /dev/null
}

tests='^(bench|tests)/'
configure phone
tidy phone "$(compiled phone | grep -Ev "$tests|^tools/")"
if [ "$*" = --all ]; then
    configure asan
    configure bench
    tidy phone "$(compiled phone | grep '^tools/')"
    tidy phone "$(compiled phone | grep -E "$tests")" '--checks=-clang-analyzer-*'
    tidy asan "$(compiled asan | grep -E '(^|/)tests/fuzz/')" '--checks=-clang-analyzer-*'
    tidy bench "$(compiled bench | grep '^bench/')" '--checks=-clang-analyzer-*'
fi
echo "clang-tidy: clean"
