#!/bin/sh
# Passes every check of this tree, or the steps named: test.sh [--list | STEP...]
#
# Installs what is missing first (needs root or sudo for that). Builds the presets that the steps
# need. Prints what it is doing, and at the end what ran, how long it took, and what was skipped and
# why. A step that fails does not keep the others from running. A step that cannot run on this machine
# ends with 77 and writes the reason into the file that KC2_SKIPPED names.
set -u
cd "$(dirname "$0")/.."

# The steps in the order in which they run. A line for each: its name, the presets that must be
# built for it (separated by commas, "-" for none), and its command.
steps() {
    cat << 'STEPS'
dev                 dev                 ctest --preset dev
phone               phone,dev           ctest --preset phone && tool_tests phone
phone-exceptions    phone-exceptions    ctest --preset phone-exceptions
phone-overflow      phone-overflow,dev  ctest --preset phone-overflow && tool_tests phone-overflow
arm64               arm64               ctest --preset arm64
arm                 arm                 ctest --preset arm
clang-arm64         clang-arm64         scripts/check-binary.py build/clang-arm64/libkcodec2_platform.so
no-tool             -                   scripts/check-no-tool.sh
style               phone               scripts/check-rooms.sh && scripts/check-style.sh
android-bp          -                   scripts/check-android-bp.py
abi                 -                   scripts/check-abi.sh
soong               -                   scripts/check-soong.py --graph
image               dev                 scripts/check-image.sh
performance         bench,phone         scripts/check-performance.py
package             dev                 scripts/check-package.sh
report              dev                 scripts/check-report.py
schema              dev                 scripts/check-schema.sh
editors             dev                 scripts/check-editors.sh
sarif               dev                 scripts/check-sarif.py
git                 dev                 scripts/check-git.py
docs                -                   scripts/check-docs.sh
commands            dev                 scripts/check-commands.py
asan                asan,dev            ctest --preset asan && tool_tests asan
fuzz                asan,phone-exceptions  scripts/fuzz.sh 5
tsan                tsan                ctest --preset tsan
STEPS
}

# The third column of a step.
command_of() {
    steps | awk -v name="$1" '$1 == name { sub(/^ *[^ ]+ +[^ ]+ +/, ""); print }'
}

presets_of() {
    steps | awk -v name="$1" '$1 == name && $2 != "-" { gsub(",", " ", $2); print $2 }'
}

names() {
    steps | awk '{ print $1 }'
}

case ${1:-} in
    --list) steps; exit 0 ;;
    -*) echo "usage: test.sh [--list | STEP...]" >&2; exit 2 ;;
    '') chosen=$(names) all=yes ;;
    *) chosen=$* all= ;;
esac
for name in $chosen; do
    names | grep -qx -e "$name" || {
        echo "test.sh: no step \"$name\"; the steps are:" $(names) >&2
        exit 2
    }
done

count=$(echo "$chosen" | wc -w)
if [ $all ]; then
    cat << COST
Runs all $count steps: about 20 minutes on two idle cores. Before that it installs what is missing: on a
bare Debian about 650 packages, 600 MB to download and 2.7 GB on disk. The builds use 2 GB in build/.
COST
else
    echo "Runs $count of $(names | wc -l) steps, the builds that they need first."
fi

table=
passed=0
failed=
skipped=
not_run=
built=
started=$(date +%s)
mkdir -p build
export KC2_SKIPPED="$PWD/build/skipped"

# A function for the commands above: the tool's tests, on the tool of a preset, on all cores.
# shellcheck disable=SC2016  # Expanded where the command runs.
tool_tests='tool_tests() {
    [ "$1" != asan ] || export KC2_TOOL_MEMORY=unlimited
    export KC2_SPEC_TOOL=$PWD/build/$1/kcodec2_spec GTEST_BRIEF=1 GTEST_TOTAL_SHARDS=$(nproc)
    seq 0 $(($(nproc) - 1)) |
        xargs -P 0 -I {} env GTEST_SHARD_INDEX={} build/dev/kcodec2_tool_tests
}
'
# Sets `processor` to the processor time of all commands so far, in seconds. Not printed: what a shell
# starts to read it would have used none.
count_processor() {
    times > build/times
    processor=$(awk -F '[ms ]+' 'NR == 2 { print int(($1 + $3) * 60 + $2 + $4) }' build/times)
}

# begin, then end TITLE RESULT: adds a row to the table.
begin() {
    began=$(date +%s)
    count_processor
    used=$processor
}
end() {
    count_processor
    row=$(printf '%-24s %-8s %5d s %6d s' "$1" "$2" $(($(date +%s) - began)) \
        $((processor - used)))
    table="$table$row
"
    printf -- '-- %s\n' "$row"
}

# run TITLE COMMAND: runs it, and adds a row to the table. Fails when it fails.
run() {
    printf '\n== %s: %s\n' "$1" "$2"
    begin
    : > "$KC2_SKIPPED"
    sh -eu -c "$tool_tests $2"
    status=$?
    if [ $status -eq 0 ]; then
        result=passed
    elif [ $status -eq 77 ] && [ -s "$KC2_SKIPPED" ]; then
        result=skipped
    else
        result=FAILED
    fi
    end "$1" $result
    [ $result != FAILED ] || { failed="$failed $1"; return 1; }
}

# build PRESET: configures and builds it, once in a run. Fails when that fails.
build() {
    case " $built " in
        *" $1 "*) return 0 ;;
        *" $1:failed "*) return 1 ;;
    esac
    if run "build $1" "cmake --preset $1 > /dev/null && cmake --build --preset $1"; then
        built="$built $1"
    else
        built="$built $1:failed"
        return 1
    fi
}

step() {
    for preset in $(presets_of "$1"); do
        build "$preset" || {
            begin
            end "$1" 'not run'
            not_run="$not_run
  $1: the preset $preset cannot be built"
            return
        }
    done
    run "$1" "$(command_of "$1")" || return
    case $result in
        passed) passed=$((passed + 1)) ;;
        skipped) skipped="$skipped
  $1: $(cat "$KC2_SKIPPED")" ;;
    esac
}

run install "scripts/install-packages.sh test" || exit 1
for name in $chosen; do
    step "$name"
done

printf '\n%-33s %7s %8s\n%s%-33s %5d s %6d s\n' '' time processor "$table" \
    all $(($(date +%s) - started)) "$processor"
[ -z "$skipped" ] || printf '\nSkipped:%s\n' "$skipped"
[ -z "$not_run" ] || printf '\nNot run:%s\n' "$not_run"
if [ -n "$failed" ]; then
    printf '\nFailed:%s\nA step runs alone with: scripts/test.sh STEP\n' "$failed"
    exit 1
fi

# What passed is counted, so that nothing is said of a step that was skipped.
if [ $passed -eq "$count" ] && [ $all ]; then
    printf '\nEverything passed.\n'
elif [ "$count" -eq 1 ] && [ $passed -eq 1 ]; then
    printf '\nThe chosen step passed.\n'
elif [ $passed -eq "$count" ]; then
    printf '\nThe %d chosen steps passed.\n' "$count"
else
    printf '\n%d of %d steps passed, and none failed.\n' $passed "$count"
fi
cat << NEXT

What next: CONTRIBUTING.md says which step checks what. One step runs alone with
"scripts/test.sh STEP", the tests of one build with "ctest --preset dev".
NEXT
