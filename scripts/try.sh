#!/bin/sh
# Installs what is missing, builds the library and the tool, and shows the store that a device would
# load: first a bare device, then the example device tree; finally it writes a page about all of the
# example's variants. Needs root or sudo for the packages. What it prints can be repeated.
set -eu
cd "$(dirname "$0")/.."

cat << 'COST'
Builds the library and the tool, and shows what they do, in about a minute on two cores. Before that
it installs what is missing of a compiler, CMake and three libraries: on a bare Debian about 60
packages, 90 MB to download and 350 MB on disk. Everything else goes into build/, 40 MB.

COST
scripts/install-packages.sh run
echo "Building the library and the tool"
mkdir -p build
log=build/try.log
rm -f "$log.failed"
{ { cmake --preset run && cmake --build build/run; } 2>&1 || touch "$log.failed"; } | tee "$log" |
    scripts/progress.sh ninja
if [ -f "$log.failed" ]; then
    cat "$log"
    exit 1
fi

tool=build/run/kcodec2_spec
demo() {
    printf '\n$ %s\n' "$*"
    "$@"
}
mkdir -p build/bare-device

echo
echo "A bare device, with no document anywhere: the chip's built-in document fills the store."
echo "The lines that begin with E/ or W/ are what the device would log while it loads."
demo $tool show --rootdir build/bare-device

echo
echo "The example device: its variant's document, then the private file."
demo $tool show --rootdir examples/device --variant _orvelle

echo
echo "All variants of the example device on one page, with what the checker finds; open it in a browser."
demo $tool report --rootdir examples/device --output build/report.html

cat << NEXT

What next:
  open build/report.html in a browser
  check your own device tree:  $tool check --all-variants --rootdir DIR
  what the tool can do:        $tool help, docs/tool.md
  write a document:            docs/documents.md, and docs/editors.md for your editor
  use it from other projects:  docs/packages.md
  run every check of the tree: scripts/test.sh
NEXT
