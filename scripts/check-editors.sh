#!/bin/sh
# Drives the language server with clients of others: check-editors.sh [TOOL], kcodec2_spec of a host
# build (default: build/dev/kcodec2_spec)
#
# Neovim opens an example, and a library that editors are built on sends each request. The extension
# for Visual Studio Code is packaged; nothing here can run it. Needs nvim, node and npm. What is fetched
# is kept in build/editor. Takes ten seconds beside the fetch.
set -eu
cd "$(dirname "$0")/.."

tool=$(realpath "${1:-build/dev/kcodec2_spec}")
fetched=build/editor
mkdir -p "$fetched"

# quietly LOG COMMAND: shows the output only when the command fails.
quietly() {
    log=$1
    shift
    "$@" > "$log" 2>&1 || { cat "$log" >&2; echo "check-editors: failed: $*" >&2; exit 1; }
}

# fetch PACKAGE VERSION
fetch() {
    grep -qs "\"version\": \"$2\"" "$fetched/node_modules/$1/package.json" && return
    echo "Fetching $1 $2"
    # Newer releases of cheerio, which vsce uses, need a later Node than Debian 12 has.
    [ -f "$fetched/package.json" ] || echo '{"private": true}' > "$fetched/package.json"
    (cd "$fetched" && npm pkg set overrides.cheerio=1.0.0-rc.12)
    quietly "$fetched/npm.log" npm install --no-audit --no-fund --prefix "$fetched" "$1@$2"
}
fetch vscode-languageserver-protocol 3.17.5
fetch @vscode/vsce 2.32.0
[ -d "$fetched/node_modules/vscode-json-languageservice" ] || fetch vscode-json-languageservice latest

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
cp -R examples/device "$scratch/device"
mkdir "$scratch/bin" "$scratch/home"
ln -s "$tool" "$scratch/bin/kcodec2_spec"

document=$scratch/device/odm/etc/media_orvelle/video_system_specs.json
HOME=$scratch/home PATH=$scratch/bin:$PATH quietly "$scratch/log" timeout 60 \
    nvim --headless -i NONE -n -u examples/editor/neovim.lua "$document" \
    -c 'luafile scripts/check-editors.lua'
added=$(diff examples/device/odm/etc/media_orvelle/video_system_specs.json "$document" || true)
[ "$(echo "$added" | sed -n 's/^> *//p' | tr -d '\t')" = '"private_enc_vpss_flip": true,' ] || {
    echo "check-editors: Neovim has saved something else: $added" >&2
    exit 1
}
echo "check-editors: $(nvim --version | head -1): findings, hover, a quick fix, completion, save"

NODE_PATH=$fetched/node_modules node scripts/check-editors.js "$tool" "$scratch/device"

cp -R examples/editor/vscode "$scratch/extension"
(
    cd "$scratch/extension"
    quietly "$scratch/log" npm install --omit=dev --no-audit --no-fund
    quietly "$scratch/log" node "$OLDPWD/$fetched/node_modules/@vscode/vsce/vsce" package \
        --out extension.vsix
)
python3 -m zipfile -l "$scratch/extension/extension.vsix" > "$scratch/log"
for file in extension/package.json extension/extension.js \
    extension/node_modules/vscode-languageclient/package.json; do
    grep -q "^$file " "$scratch/log" || {
        echo "check-editors: the packaged extension lacks $file" >&2
        exit 1
    }
done
echo "check-editors: the extension for Visual Studio Code is packaged (not run)"
