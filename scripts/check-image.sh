#!/bin/sh
# Builds examples/image with CMake and an installed package: good documents are installed, and a broken
# one fails the build: check-image.sh [BUILD-DIRECTORY], of a host build (default: build/dev).
set -eu

export CMAKE_GENERATOR=Ninja
source=$(cd "$(dirname "$0")/.." && pwd)
build=${1:-$source/build/dev}
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    cat "$scratch/log" >&2
    echo "check-image: $*" >&2
    exit 1
}

cmake --install "$build" --prefix "$scratch/package" > "$scratch/log" 2>&1 || fail "no package"
cp -r "$source/examples/image" "$scratch/image"
cmake -S "$scratch/image" -B "$scratch/build" -DCMAKE_PREFIX_PATH="$scratch/package" \
    > "$scratch/log" 2>&1 || fail "the example does not configure"
cmake --build "$scratch/build" > "$scratch/log" 2>&1 || fail "good documents fail the build"
cmake --install "$scratch/build" --prefix "$scratch/out" > "$scratch/log" 2>&1 || fail "no image"

# must_fail FILE: the build fails, and says that a section of FILE is misspelt.
must_fail() {
    if cmake --build "$scratch/build" > "$scratch/log" 2>&1; then
        fail "a misspelt section in $1 does not fail the build"
    fi
    grep -q "$1.*section-misspelt" "$scratch/log" || fail "the build does not say what is wrong in $1"
}

for document in odm/etc/media_orvelle vendor/etc/media; do
    file=$document/video_system_specs.json
    cmp "$scratch/image/$file" "$scratch/out/$file" || fail "$file is not in the image"
    sed -i 's/"Presets"/"Preset"/' "$scratch/image/$file"
    must_fail "$file"
    cp "$source/examples/image/$file" "$scratch/image/$file"
done

# A variant that is new is not forgotten.
cmake --build "$scratch/build" > "$scratch/log" 2>&1 || fail "good documents fail the build again"
file=vendor/etc/media_new/video_system_specs.json
mkdir "$scratch/image/vendor/etc/media_new"
sed 's/"Presets"/"Preset"/' "$source/examples/image/vendor/etc/media/video_system_specs.json" \
    > "$scratch/image/$file"
must_fail "$file"
echo "check-image: good documents pass, a broken one fails the build"
