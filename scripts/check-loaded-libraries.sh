#!/bin/sh
# Checks that programs of a phone's build load libc++ and the JsonCpp that was built for it, and
# neither libstdc++ nor Debian's JsonCpp: check-loaded-libraries.sh JSONCPP-DIRECTORY PROGRAM...
#
# When a file name is slightly wrong, the loader silently uses Debian's library. The program then mostly
# works, but proves nothing about a phone.
set -eu

expected=$1
shift
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for program in "$@"; do
    # From the loader itself, so that what the program loads later is included.
    LD_DEBUG=files LD_DEBUG_OUTPUT="$work/loader" "$program" --help > /dev/null 2>&1 < /dev/null || {
        echo "check-loaded-libraries.sh: $program --help failed" >&2
        exit 1
    }
    cat "$work"/loader.* | sed -n 's/.*calling init: \(.*\)/\1/p' | sort -u > "$work/libraries"
    rm "$work"/loader.*
    if grep -E 'libstdc\+\+|libjsoncpp' "$work/libraries" | grep -v "^$expected/libjsoncpp.so$"; then
        echo "check-loaded-libraries.sh: $program loads these" >&2
        exit 1
    fi
    for library in "$expected/libjsoncpp.so" libc++.so; do
        grep -q -F "$library" "$work/libraries" || {
            cat "$work/libraries"
            echo "check-loaded-libraries.sh: $program does not load $library" >&2
            exit 1
        }
    done
    echo "$program loads the libraries of a phone"
done
