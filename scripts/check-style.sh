#!/bin/sh
# Checks every source file against .clang-format and .clang-tidy. Needs build/device to be built:
# its compile commands and its generated source. The static analyzer looks at the product alone: in
# the tests it would spend most of its time on the macros of their library.
set -eu
cd "$(dirname "$0")/.."

git ls-files '*.h' '*.cpp' | xargs clang-format-14 --dry-run -Werror
echo "clang-format: clean"

# tidy PATTERN OPTION...: the compiled files whose names match.
tidy() {
    pattern=$1
    shift
    sed -n 's|^ *"file": "'"$PWD"'/\(.*\)",*$|\1|p' build/device/compile_commands.json |
        grep -E "$pattern" | sort -u |
        xargs -r -P "$(nproc)" -n 1 clang-tidy-14 -p build/device --quiet "$@" 2> /dev/null
}

tidy '^(base|hostplatform|log|platform|targetspec|tools)/'
tidy '^(bench|checks|fuzz|tests)/' '--checks=-clang-analyzer-*'
echo "clang-tidy: clean"
