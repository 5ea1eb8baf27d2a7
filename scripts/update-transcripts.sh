#!/bin/sh
# Rewrites the transcripts in tests/unit/transcripts/ with the tool of a build: review what changes. For
# a new one, make a file with its first line only: "$ kcodec2_spec" and the arguments.
# usage: scripts/update-transcripts.sh [BUILD-DIRECTORY]
set -u
cd "$(dirname "$0")/.." || exit 1
tool=$(realpath "${1:-build/dev}")/kcodec2_spec
[ -x "$tool" ] || { echo "update-transcripts.sh: no tool in ${1:-build/dev}" >&2; exit 1; }
cd tests/unit/transcripts || exit 1
for file in *.txt; do
    arguments=$(sed -n '1s/^\$ kcodec2_spec //p' "$file")
    output=$(eval "$tool $arguments" 2>&1; echo "[exit code $?]")
    printf '$ kcodec2_spec %s\n%s\n' "$arguments" "$output" > "$file"
done
