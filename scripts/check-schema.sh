#!/bin/sh
# Opens documents in an editor's engine with the schema that the tool prints: check-schema.sh
# [TOOL], kcodec2_spec of a host build (default: build/dev/kcodec2_spec)
#
# Needs node and npm. The engine is kept in build/editor/node_modules. Takes two seconds.
set -eu
cd "$(dirname "$0")/.."

tool=${1:-build/dev/kcodec2_spec}
engine=vscode-json-languageservice
if [ ! -d build/editor/node_modules/$engine ]; then
    echo "Fetching the editor's engine"
    mkdir -p build/editor
    npm install --no-audit --no-fund --prefix build/editor $engine > build/editor/npm.log 2>&1 || {
        cat build/editor/npm.log >&2
        exit 1
    }
fi
NODE_PATH=build/editor/node_modules node scripts/check-schema.js "$tool"
