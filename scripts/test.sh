#!/bin/sh
# Installs what is missing and passes every check of this tree: builds, tests, style, binary,
# fuzzing, speed, package, documents. Needs root or sudo for the packages; about a quarter of an
# hour on two cores.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh test

step() {
    printf '\n== %s\n' "$*"
}

suite() {
    step "Build and tests: preset $1"
    cmake --preset "$1" > /dev/null
    cmake --build --preset "$1"
    ctest --preset "$1"
}

check() {
    step "$*"
    "scripts/$@"
}

suite dev
suite device
check check-style.sh
check check-builds.sh
check check-android-bp.py
check check-soong.py
check check-performance.py
check check-package.sh
check check-image.sh
check check-docs.sh
suite asan
check fuzz.sh 20
suite tsan

printf '\nEverything passed.\n'
