#!/bin/sh
# Checks every source file against .clang-format and .clang-tidy. Needs build/device to be built: its
# compile commands and its generated source.
set -eu
cd "$(dirname "$0")/.."

git ls-files '*.h' '*.cpp' | xargs clang-format-14 --dry-run -Werror
echo "clang-format: clean"
python3 - <<'EOF' | xargs -r -P "$(nproc)" -n 3 clang-tidy-14 -p build/device --quiet 2> /dev/null
import json, os
for entry in json.load(open("build/device/compile_commands.json")):
    name = os.path.relpath(entry["file"])
    if not name.startswith("build"):
        print(name)
EOF
echo "clang-tidy: clean"
