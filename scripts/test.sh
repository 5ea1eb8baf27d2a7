#!/bin/sh
# Installs what is missing and passes every check of this tree: style, builds, tests.
# Needs root or sudo for the packages.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh test

step() {
    printf '\n== %s\n' "$*"
}

suite() {
    step "Tests: preset $1"
    cmake --preset "$1" > /dev/null
    cmake --build "build/$1"
    ctest --preset "$1"
}

suite dev
suite device
step "Style"
scripts/check-style.sh
suite asan
suite tsan
