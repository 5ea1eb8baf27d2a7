#!/bin/sh
# Builds the libraries that the presets "phone*" link, for libc++, under build/phone-libraries. CMake
# runs it for these presets. Takes half a minute, the first time only.
#
# Debian's JsonCpp and GoogleTest are built for libstdc++. A phone's JsonCpp has no exceptions and no
# version in its file name, and its later releases stop at 256 nested containers. Two are built from
# Debian's sources:
# - no-exceptions: beyond that limit it ends the process;
# - exceptions: beyond that limit it throws. Json::Reader is deprecated, as in later releases.
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
    build "$1" "$work/jsoncpp/source" "-DJSONCPP_DEPRECATED_STACK_LIMIT=256 $2" \
        -DBUILD_SHARED_LIBS=ON -DBUILD_STATIC_LIBS=OFF -DBUILD_OBJECT_LIBS=OFF \
        -DJSONCPP_WITH_TESTS=OFF -DJSONCPP_WITH_POST_BUILD_UNITTEST=OFF \
        -DCMAKE_PLATFORM_NO_VERSIONED_SONAME=ON
}

jsoncpp no-exceptions "-DJSON_USE_EXCEPTION=0 -DJSONCPP_NO_LOCALE_SUPPORT -fno-exceptions"
jsoncpp exceptions ""
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
