#!/bin/sh
# Installs what is missing, builds the library and the tool, and shows the store that a device would
# load: first a bare device, then the example device tree. Needs root or sudo for the packages.
set -eu
cd "$(dirname "$0")/.."

scripts/install-packages.sh run
echo "Building ..."
mkdir -p build
log=build/try.log
{ cmake --preset run && cmake --build build/run; } > "$log" 2>&1 || { cat "$log"; exit 1; }

tool=build/run/kcodec2_spec
demo() {
    printf '\n$ %s\n' "$*"
    "$@"
}
empty=$(mktemp -d)
trap 'rmdir "$empty"' EXIT

echo "A bare device, with no document anywhere: the chip's built-in document fills the store."
demo $tool show --rootdir "$empty"

echo
echo "The example device: its variant's document, then the private file."
demo $tool show --rootdir examples/device --property vendor.media.target_variant=_orvelle
