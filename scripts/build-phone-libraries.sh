#!/bin/sh
# Builds the libraries that the presets "phone*" link, for libc++, under build/phone-libraries. CMake
# runs it for these presets. Takes half a minute, the first time only.
#
# Debian's JsonCpp and GoogleTest are built for libstdc++. A phone's JsonCpp has no exceptions and no
# version in its file name, and its later releases stop at 256 nested containers. Two are built from
# Debian's sources:
# - no-exceptions: beyond that limit it ends the process;
# - exceptions: beyond that limit it throws. It reads as later releases do (reads_as_later), and
#   Json::Reader is deprecated, as it is there.
# Needs clang, libc++-dev, libc++abi-dev, googletest, cmake, ninja-build.
set -eu

cd "$(dirname "$0")/.."
work=$PWD/build/phone-libraries
stamp=$work/stamp
state=$(cat "$0" scripts/fetch-packages.sh | cksum; clang++ --version | head -n 1)
if [ -f "$stamp" ] && [ "$(cat "$stamp")" = "$state" ]; then
    exit 0
fi

scripts/fetch-packages.sh source "$work/jsoncpp" libjsoncpp

# build NAME SOURCE FLAGS OPTION...: configures, builds and installs into $work/NAME.
build() {
    name=$1
    source=$2
    flags=$3
    shift 3
    echo "Building for libc++: $name"
    rm -rf "$work/$name-build" "${work:?}/$name"
    log=$work/$name.log
    {
        cmake -S "$source" -B "$work/$name-build" -G Ninja -DCMAKE_BUILD_TYPE=Release \
            -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
            -DCMAKE_CXX_FLAGS="-stdlib=libc++ -fPIC $flags" -DCMAKE_INSTALL_PREFIX="$work/$name" \
            -DCMAKE_INSTALL_LIBDIR=lib -DCMAKE_POLICY_VERSION_MINIMUM=3.5 "$@" &&
            cmake --build "$work/$name-build" --target install
    } > "$log" 2>&1 || { cat "$log" >&2; exit 1; }
}

jsoncpp() {
    build "$1" "$work/jsoncpp/$3" "-DJSONCPP_DEPRECATED_STACK_LIMIT=256 $2" \
        -DBUILD_SHARED_LIBS=ON -DBUILD_STATIC_LIBS=OFF -DBUILD_OBJECT_LIBS=OFF \
        -DJSONCPP_WITH_TESTS=OFF -DJSONCPP_WITH_POST_BUILD_UNITTEST=OFF \
        -DCMAKE_PLATFORM_NO_VERSIONED_SONAME=ON
}

# replace FILE OLD NEW: as sed does, but fails when OLD is not there.
replace() {
    grep -q "$2" "$1" || { echo "build-phone-libraries.sh: $1 has no \"$2\"" >&2; exit 1; }
    sed -i "s/$2/$3/" "$1"
}

# reads_as_later DIRECTORY: changes JsonCpp 1.9.5 or 1.9.6 to read a document as 1.9.7 does. A number beyond
# the range of double is infinity (from 1.9.6 on); an unescaped control character in a string is an
# error.
reads_as_later() {
    reader=$1/src/lib_json/json_reader.cpp
    replace "$reader" 'if (!(is >> value))' 'if (!(is >> value) \&\& !std::isinf(value *= 2))'
    replace "$reader" '^      decoded += c;' '      if (static_cast<unsigned char>(c) < 0x20)\
        return addError("Control character in string", token, current);\
      decoded += c;'
    replace "$reader" '^#include <cassert>' '#include <cassert>\n#include <cmath>'
    replace "$1/include/json/version.h" '^#define JSONCPP_VERSION_PATCH [0-9]*' \
        '#define JSONCPP_VERSION_PATCH 7'
}

rm -rf "$work/jsoncpp/later"
cp -R "$work/jsoncpp/source" "$work/jsoncpp/later"
reads_as_later "$work/jsoncpp/later"

jsoncpp no-exceptions "-DJSON_USE_EXCEPTION=0 -DJSONCPP_NO_LOCALE_SUPPORT -fno-exceptions" source
jsoncpp exceptions "" later
build googletest /usr/src/googletest "" -DBUILD_GMOCK=OFF

# uses_reader: compiles a use of Json::Reader against the headers of the library with exceptions.
uses_reader() {
    echo '#include <json/json.h>
    void use() { Json::Reader reader; Json::Value root; reader.parse("", root); }' |
        clang++ -stdlib=libc++ -std=c++20 -Werror -isystem "$work/exceptions/include" \
            -x c++ -fsyntax-only - 2> "$work/reader.log"
}
sed -i 's/^class JSON_API Reader {/class [[deprecated("later")]] JSON_API Reader {/' \
    "$work/exceptions/include/json/reader.h"
if uses_reader || ! grep -q "deprecated" "$work/reader.log"; then
    cat "$work/reader.log" >&2
    echo "build-phone-libraries.sh: Json::Reader is not deprecated there" >&2
    exit 1
fi

echo "$state" > "$stamp"
