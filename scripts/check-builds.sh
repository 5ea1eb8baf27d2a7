#!/bin/sh
# Compiles the library's sources, and its headers alone, with every compiler that a vendor may use,
# each warning an error: check-builds.sh. Needs g++-12, clang++-14, libc++-14-dev,
# g++-aarch64-linux-gnu, lld, ninja, and the headers of JsonCpp.
#
# Two things beyond that: a link against libc++, where JsonCpp stays undefined because the packaged
# one is built for libstdc++, checks that the linker map fits libc++'s spelling of std types; and a
# JsonCpp whose Json::Reader is deprecated, as in later releases, must cause no warning.
set -eu

cd "$(dirname "$0")/.."
work=build/builds
mkdir -p "$work"
jsoncpp=$(pkg-config --variable=includedir jsoncpp)
documents=$work/EmbeddedDocuments.cpp
scripts/embed-documents.sh "$documents" targetspec/defaults/default_document_[123].json

# The same headers with Json::Reader deprecated, and our source without what keeps it silent.
later=$work/later-jsoncpp
rm -rf "$later"
cp -r "$jsoncpp" "$later"
sed -i 's/^class JSON_API Reader {/class [[deprecated("later")]] JSON_API Reader {/' \
    "$later/json/reader.h"
grep -q 'deprecated("later")' "$later/json/reader.h" || {
    echo "check-builds.sh: reader.h of JsonCpp no longer declares Reader as it did" >&2
    exit 1
}
unguarded=$work/UnguardedReader.cpp
sed '/#pragma GCC diagnostic/d' targetspec/reading/SpecReader.cpp > "$unguarded"

# The compilers: a name, a command.
compilers() {
    echo "gcc g++-12"
    echo "clang clang++-14"
    echo "libc++ clang++-14 -stdlib=libc++"
    echo "gcc-aarch64 aarch64-linux-gnu-g++"
    echo "clang-aarch64 clang++-14 --target=aarch64-linux-gnu"
}

# compile OBJECT COMPILER SOURCE [INCLUDE OPTION]: one compilation, for ninja.
compile() {
    echo "build $work/$1: compile $3"
    echo "  compiler = $2"
    echo "  jsoncpp = ${4:--isystem $jsoncpp}"
}

{
    echo "builddir = $work"
    echo "includes = -I. -Iinclude -isystem hostplatform/include"
    echo "warnings = -Wall -Wextra -Werror"
    echo "rule compile"
    echo "  command = \$compiler \$warnings -std=c++20 -O2 -fPIC -fvisibility=hidden" \
        "-fvisibility-inlines-hidden -fno-exceptions -fno-rtti \$includes \$jsoncpp" \
        "-MD -MF \$out.d -c \$in -o \$out"
    echo "  description = \$out"
    echo "  depfile = \$out.d"
    echo "  deps = gcc"
    echo "rule header"
    echo "  command = \$compiler \$warnings -std=c++17 -Iinclude -x c++ -fsyntax-only" \
        "-include \$in /dev/null && touch \$out"
    echo "  description = \$out"
    echo "rule link"
    echo "  command = clang++-14 -stdlib=libc++ -fuse-ld=lld -shared" \
        "-Wl,--version-script=libkcodec2_platform.map.txt -Wl,-soname,libkcodec2_platform.so" \
        "-Wl,-z,relro -Wl,-z,now -Wl,-z,noexecstack -Wl,-z,text -o \$out \$in"
    echo "  description = \$out"
    echo "rule must_warn"
    echo "  command = ! \$compiler \$warnings -std=c++20 \$includes -isystem $later -fsyntax-only" \
        "\$in 2> \$out && grep -q deprecated \$out"
    echo "  description = \$out must warn"

    compilers | while read -r name compiler; do
        objects=
        for source in platform/*.cpp targetspec/*.cpp "$documents"; do
            object=$name/$(basename "$source").o
            compile "$object" "$compiler" "$source"
            case $source in
                *_host.cpp) ;;
                *) objects="$objects $work/$object" ;;
            esac
        done
        for header in include/kc2/*.h; do
            echo "build $work/$name/$(basename "$header").alone: header $header"
            echo "  compiler = $compiler"
        done
        compile "$name/later.o" "$compiler" targetspec/reading/SpecReader.cpp "-isystem $later"
        echo "build $work/$name/unguarded.txt: must_warn $unguarded"
        echo "  compiler = $compiler"
        if [ "$name" = libc++ ]; then
            echo "build $work/libc++/libkcodec2_platform.so: link$objects"
        fi
    done
} > "$work/build.ninja"

ninja --quiet -f "$work/build.ninja" -k 0
echo "check-builds.sh: all compiled, without a warning"
scripts/check-binary.py "$work/libc++/libkcodec2_platform.so"
