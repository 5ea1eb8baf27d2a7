#!/bin/sh
# Fetches packages of the machine's Debian release and unpacks them, without installing anything:
# fetch-packages.sh source DIRECTORY PACKAGE         (the authors' source, without Debian's changes)
# fetch-packages.sh ARCHITECTURE DIRECTORY PACKAGE...  (binary packages, also of foreign processors)
#
# The package lists are under build/, so the machine's configuration does not change. Needs no root.
# Does nothing when DIRECTORY already contains these packages.
set -eu

[ $# -ge 3 ] || { echo "usage: fetch-packages.sh source|ARCHITECTURE DIRECTORY PACKAGE..." >&2; exit 2; }
what=$1
directory=$2
shift 2
[ ! -f "$directory/.complete" ] || [ "$(cat "$directory/.complete")" != "$*" ] || exit 0

root=$(cd "$(dirname "$0")/.." && pwd)
state=$root/build/apt/$what
rm -rf "$directory"
mkdir -p "$state/lists/partial" "$state/cache/archives/partial" "$state/none" "$directory"
: > "$state/status"

# From where the machine gets its own packages, so that its mirror is used.
# shellcheck source=/dev/null
codename=$(. /etc/os-release && echo "$VERSION_CODENAME")
mirror=$(apt-get indextargets --format '$(REPO_URI) $(RELEASE) $(COMPONENT)' |
    sed -n "s|^\([^ ]*\) $codename main\$|\1|p" | head -n 1)
[ -n "$mirror" ] || {
    echo "fetch-packages.sh: the machine's package sources have no Debian $codename main" >&2
    exit 1
}
for keyring in /usr/share/keyrings/debian-archive-keyring.gpg \
        /usr/share/keyrings/debian-archive-keyring.pgp; do
    [ ! -f "$keyring" ] || break
done

if [ "$what" = source ]; then
    echo "deb-src [signed-by=$keyring] $mirror $codename main" > "$state/sources.list"
    architecture=$(dpkg --print-architecture)
else
    echo "deb [signed-by=$keyring] $mirror $codename main" > "$state/sources.list"
    architecture=$what
fi

apt() {
    apt-get -qq -o APT::Architecture="$architecture" -o APT::Architectures="$architecture" \
        -o APT::Sandbox::User=root -o Acquire::Languages=none -o Acquire::Retries=3 \
        -o Dir::Etc::SourceList="$state/sources.list" -o Dir::Etc::SourceParts="$state/none" \
        -o Dir::State="$state" -o Dir::State::Lists="$state/lists" -o Dir::State::Status="$state/status" \
        -o Dir::Cache="$state/cache" "$@"
}

echo "Fetching for $what: $*"
apt update
cd "$directory"
if [ "$what" = source ]; then
    # A source package's description changes with each upload, and a mirror may be updating.
    apt source --tar-only --download-only "$1"
    mkdir source
    tar -x --strip-components=1 -C source -f ./*.orig.tar.*
else
    apt download "$@"
    for package in ./*.deb; do
        dpkg -x "$package" .
        rm "$package"
    done
fi
echo "$*" > .complete
