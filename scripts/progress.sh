#!/bin/sh
# Shows how far a build or an installation is, at most a line in five seconds: what ninja or apt
# prints comes in, "12 of 40" goes out: COMMAND | progress.sh ninja, or progress.sh apt PACKAGES
#
# In the shell, because not every awk or sed handles a line of a pipe when it comes: Debian's mawk
# waits for a block of them.
set -eu

last=$(date +%s)

# show WHAT NUMBER ALL
show() {
    now=$(date +%s)
    if [ $((now - last)) -ge 5 ] || [ "$2" -eq "$3" ]; then
        echo "  $1$2 of $3"
        last=$now
    fi
}

of_ninja() {
    while IFS= read -r line; do
        case $line in
            \[[0-9]*/[0-9]*\]\ *)
                counts=${line#\[}
                counts=${counts%%\]*}
                show "" "${counts%/*}" "${counts#*/}" ;;
        esac
    done
}

of_apt() {
    downloaded=0 unpacked=0 ready=0
    while IFS= read -r line; do
        case $line in
            Get:*) downloaded=$((downloaded + 1)); show "downloaded " $downloaded "$1" ;;
            Unpacking\ *) unpacked=$((unpacked + 1)); show "unpacked " $unpacked "$1" ;;
            Setting\ up\ *) ready=$((ready + 1)); show "set up " $ready "$1" ;;
        esac
    done
}

case $* in
    ninja) of_ninja ;;
    apt\ [0-9]*) of_apt "$2" ;;
    *) echo "usage: progress.sh ninja, or progress.sh apt PACKAGES" >&2; exit 2 ;;
esac
