#!/bin/sh
# Installs a build into a scratch directory, moves it, and builds a consumer outside the tree against
# it, with CMake and with pkg-config: check-package.sh [BUILD-DIRECTORY]
#
# The build directory is one of a host build (default: build/dev). Needs cmake, ninja, pkg-config
# and a C++ compiler. Takes ten seconds.
set -eu

export CMAKE_GENERATOR=Ninja  # Installed for the tests; make may be missing.
source=$(cd "$(dirname "$0")/.." && pwd)
build=$(realpath "${1:-$source/build/dev}")
scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

fail() {
    echo "check-package: $*" >&2
    exit 1
}

quietly() {
    "$@" > "$scratch/log" 2>&1 || { cat "$scratch/log" >&2; fail "failed: $*"; }
}

# run_consumer PROGRAM: it must run and print the expected text.
run_consumer() {
    "$1" 2> "$scratch/log" > "$scratch/output" || fail "decoder_setup failed"
    diff "$scratch/consumer/decoder_setup.expected" "$scratch/output" || fail "the output differs"
}

# program_in PAGE: the C++ program that it shows.
program_in() {
    sed -n '/^```cpp$/,/^```$/p' "$source/$1" | sed '/^```/d'
}

echo "Installing, and moving what was installed"
quietly cmake --install "$build" --prefix "$scratch/first-place"
prefix=$scratch/package
mv "$scratch/first-place" "$prefix"

echo "Headers: the seven of the library, and the stand-ins' one in a separate directory"
(cd "$prefix/include" && find . -type f | LC_ALL=C sort) > "$scratch/headers"
diff - "$scratch/headers" << HEADERS || fail "the installed headers are not these"
./kc2/FileDescriptor.h
./kc2/IonInfo.h
./kc2/KC2PlatformVersion.h
./kc2/PixFormat.h
./kc2/TamraBufferLayout.h
./kc2/TargetSpec.h
./kc2/TargetSpecKeys.h
./kcodec2-hostplatform/hostplatform/HostPlatform.h
HEADERS

echo "No path of this machine in the package's files"
if grep -rlIF -e "$source" -e "$build" -e "$scratch" "$prefix"; then
    fail "the files above name a directory of this machine"
fi
libraries=$(dirname "$(find "$prefix" -name libkcodec2_platform.so)")
if readelf -d "$libraries"/*.so | grep -E '(RPATH|RUNPATH).*\[[^]]*/'; then
    fail "a library looks for others in a directory of this machine"
fi

echo "A consumer outside the tree, with CMake"
cp -r "$source/examples/consumer" "$scratch/consumer"
quietly cmake -S "$scratch/consumer" -B "$scratch/consumer-build" -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$scratch/consumer-build"
run_consumer "$scratch/consumer-build/decoder_setup"
(cd "$scratch/consumer-build" && quietly ctest --output-on-failure --no-tests=error)

echo "The same consumer, with pkg-config"
PKG_CONFIG_PATH=$libraries/pkgconfig
export PKG_CONFIG_PATH
for program in decoder_setup decoder_setup_test; do
    # shellcheck disable=SC2046
    quietly "${CXX:-c++}" -std=c++17 "$scratch/consumer/$program.cpp" -o "$scratch/$program" \
        $(pkg-config --cflags --libs kcodec2_platform kcodec2_hostplatform)
done
LD_LIBRARY_PATH=$libraries run_consumer "$scratch/decoder_setup"
LD_LIBRARY_PATH=$libraries quietly "$scratch/decoder_setup_test" "$scratch/consumer/device"

echo "What the headers declare and the device's own library defines: linked with kcodec2_platform alone"
cp -r "$scratch/consumer" "$scratch/declared"
cat > "$scratch/declared/decoder_setup.cpp" << 'PROGRAM'
#include <cstdio>

#include "kc2/PixFormat.h"

int main() {
    std::puts(kc2::PixFormat::Str(kc2::PixFormat::TAMRA_NV12));
}
PROGRAM
quietly cmake -S "$scratch/declared" -B "$scratch/declared-build" -DCMAKE_PREFIX_PATH="$prefix"
quietly cmake --build "$scratch/declared-build" --target decoder_setup
"$scratch/declared-build/decoder_setup" > "$scratch/name"
# shellcheck disable=SC2046
quietly "${CXX:-c++}" -std=c++17 "$scratch/declared/decoder_setup.cpp" -o "$scratch/declared-program" \
    $(pkg-config --cflags --libs kcodec2_platform)
LD_LIBRARY_PATH=$libraries "$scratch/declared-program" | cmp - "$scratch/name" ||
    fail "the two programs differ"
[ -s "$scratch/name" ] || fail "the stand-in names no format"

echo "The program in docs/components.md is the consumer's"
program_in docs/components.md | diff - "$source/examples/consumer/decoder_setup.cpp" ||
    fail "the programs differ"

echo "The program of the README"
program_in README.md > "$scratch/readme.cpp"
# shellcheck disable=SC2046
quietly "${CXX:-c++}" -std=c++17 "$scratch/readme.cpp" -o "$scratch/readme" \
    $(pkg-config --cflags --libs kcodec2_platform)
LD_LIBRARY_PATH=$libraries quietly "$scratch/readme"

echo "One version everywhere, and a consumer that requires another one does not configure"
version=$(sed -n 's/^#define KC2_VERSION "\(.*\)"/\1/p' "$source/platform/Version.h")
for module in kcodec2_platform kcodec2_hostplatform; do
    found=$(pkg-config --modversion $module)
    [ "$found" = "$version" ] || fail "$module is version $found, not $version"
done
sed 's/kcodec2_platform 1.0 REQUIRED/kcodec2_platform 2.0 REQUIRED/' \
    "$source/examples/consumer/CMakeLists.txt" > "$scratch/consumer/CMakeLists.txt"
if cmake -S "$scratch/consumer" -B "$scratch/other-build" -DCMAKE_PREFIX_PATH="$prefix" \
        > "$scratch/log" 2>&1; then
    fail "version 2.0 was found"
fi
grep -q "version: $version" "$scratch/log" || fail "the message does not name version $version"

# check_tool PREFIX: the tool runs, and its manual page, schema and completions are installed and valid.
check_tool() {
    tool=$1/bin/kcodec2_spec
    quietly "$tool" --help
    page=$1/share/man/man1/kcodec2_spec.1
    "$tool" man | cmp - "$page" || fail "the manual page is not what the tool prints"
    groff -man -Tascii -P-cbou -ww "$page" > "$scratch/page" 2> "$scratch/log"
    [ ! -s "$scratch/log" ] || { cat "$scratch/log" >&2; fail "the manual page has mistakes"; }
    "$tool" schema | cmp - "$1/share/kcodec2/kcodec2_spec.schema.json" || fail "the schema is not what the tool prints"
    "$tool" explain --markdown | cmp - "$1/share/kcodec2/settings.md" ||
        fail "the page of the settings is not what the tool prints"
    quietly cmp "$source/tools/kcodec2_spec/catalogue/settings.json" "$1/share/kcodec2/settings.json"
    [ -s "$1/share/kcodec2/vscode-settings.json" ] || fail "no settings for the editor"
    for option in $("$tool" check --help | grep -o '^ *--[a-z-]*'); do
        grep -q -e "$option" "$scratch/page" || fail "the manual page lacks $option"
    done
    check_bash "$1/share/bash-completion/completions/kcodec2_spec"
    zsh -n "$1/share/zsh/site-functions/_kcodec2_spec" || fail "zsh cannot read the completions"
}

# check_bash FILE: what it offers at the end of each command line.
check_bash() {
    bash -u -c '
        cd "$2"; . "$1"; wrong=0
        offers() {
            COMP_WORDS=($1); [[ $1 != *" " ]] || COMP_WORDS+=("")
            COMP_CWORD=$((${#COMP_WORDS[@]} - 1))
            _kcodec2_spec
            [ "${COMPREPLY[*]}" = "$2" ] || { echo "\"$1\": ${COMPREPLY[*]}, not $2" >&2; wrong=1; }
        }
        offers "kcodec2_spec ch" "check"
        offers "kcodec2_spec check --wer" "--werror"
        offers "kcodec2_spec check --format " "text json sarif"
        offers "kcodec2_spec check decoder_setup.c" "decoder_setup.cpp"
        offers "kcodec2_spec show --rootdir d" "device"
        offers "kcodec2_spec completion z" "zsh"
        exit $wrong' bash "$1" "$source/examples/consumer" || fail "bash does not offer the expected words"
}

if [ -x "$prefix/bin/kcodec2_spec" ]; then
    echo "The tool runs from where it was moved, with manual page, completions and schema"
    check_tool "$prefix"
fi

echo "The commands of docs/packages.md, word for word"
mkdir -p "$scratch/tree/build"
cp -r "$source/examples" "$scratch/tree/examples"
ln -s "$build" "$scratch/tree/build/run"
{
    echo 'set -eux'
    sed -n '/^```sh$/,/^```$/p' "$source/docs/packages.md" | sed '/^```/d'
} > "$scratch/commands"
(cd "$scratch/tree" && unset PKG_CONFIG_PATH && quietly bash "$scratch/commands")
[ "$(grep -c '^decoder_setup$\|^c2.kvx.hevc.decoder: on' "$scratch/log")" -ge 2 ] ||
    fail "the consumer did not run twice"

echo "The Debian packages, unpacked and used"
for package in "$scratch"/tree/build/debian/*.deb; do
    quietly dpkg-deb --extract "$package" "$scratch/unpacked"
    dpkg-deb --field "$package" Package Depends
done > "$scratch/fields"
for line in 'Package: libkcodec2-platform' 'Package: libkcodec2-platform-dev' 'Package: kcodec2-spec' \
        "Depends: libkcodec2-platform (= $version), .*libjsoncpp" "Depends: libkcodec2-platform (= $version), kcodec2-spec"; do
    grep -q "^$line" "$scratch/fields" || { cat "$scratch/fields" >&2; fail "no \"$line\""; }
done
check_tool "$scratch/unpacked/usr"
cp "$source/examples/consumer/CMakeLists.txt" "$scratch/consumer/CMakeLists.txt"
quietly cmake -S "$scratch/consumer" -B "$scratch/debian-build" \
    -DCMAKE_PREFIX_PATH="$scratch/unpacked/usr"
quietly cmake --build "$scratch/debian-build"
run_consumer "$scratch/debian-build/decoder_setup"
echo "check-package: the package is as it should be"
