#!/bin/sh
# Checks that each folder of the tool includes only from itself and from the folders before it in the
# list below, so that no two of them need each other. Takes a moment.
set -eu
cd "$(dirname "$0")/../tools/kcodec2_spec"

find . -name '*.h' -o -name '*.cpp' | sort | xargs awk '
    BEGIN {
        count = split("base document catalogue store check log report editor commands", names)
        for (i = 1; i <= count; ++i) place[names[i]] = i
    }
    FNR == 1 {
        ++files
        split(FILENAME, path, "/")
        if (!(path[2] in place)) wrong(path[2] " is not in the list of folders")
    }
    /^ *# *include *"/ {
        split($0, quoted, "\"")
        split(quoted[2], included, "/")
        if (included[1] == "..") wrong("\"" quoted[2] "\" must be named from the root of the tool")
        if (place[included[1]] > place[path[2]]) wrong(path[2] "/ must not include \"" quoted[2] "\"")
    }
    function wrong(what) {
        print "check-rooms: tools/kcodec2_spec" substr(FILENAME, 2) ":" FNR ": " what
        failed = 1
    }
    END { exit failed || !files }' >&2
echo "check-rooms: each folder of the tool includes only from itself and the folders before it"
