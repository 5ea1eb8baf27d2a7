#!/bin/sh
# Checks a library's exports against its linker map, both ways: check-exports.sh MAP LIBRARY [NM]
set -eu

map=$1
library=$2
nm=${3:-nm}

"$nm" -D --defined-only "$library" | awk -v map="$map" -v library="$library" '
    BEGIN {
        while ((getline line < map) > 0) {
            sub(/#.*/, "", line)
            gsub(/[ \t;]/, "", line)
            if (line ~ /^_/) {
                pattern[++patterns] = line
                gsub(/\*/, ".*", line)
                regex[patterns] = "^" line "$"
            }
        }
        if (patterns == 0) {
            print "check-exports: " map " lists no symbol"
            failed = 1
        }
    }
    $2 != "A" {
        sub(/@.*/, "", $3)
        found = 0
        for (i = 1; i <= patterns; ++i) {
            if ($3 ~ regex[i]) {
                ++found
                ++matches[i]
            }
        }
        if (found == 0) {
            print library ": exports " $3 ", which " map " does not list"
            failed = 1
        }
    }
    END {
        for (i = 1; i <= patterns; ++i) {
            if (matches[i] != 1) {
                print map ": " pattern[i] " matches " matches[i] + 0 " exported symbols instead of one"
                failed = 1
            }
        }
        exit failed
    }'
