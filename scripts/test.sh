#!/bin/sh
# Passes every check of this tree, or the steps named: test.sh [--list | STEP...]
#
# Installs what is missing first (needs root or sudo for that). Builds the presets that the steps
# need. Prints what it is doing, and at the end how long each part took. A step that fails does not
# keep the others from running.
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
style               phone               scripts/check-style.sh
android-bp          -                   scripts/check-android-bp.py
abi                 -                   scripts/check-abi.sh
soong               -                   scripts/check-soong.py --graph
image               dev                 scripts/check-image.sh
performance         bench,phone         scripts/check-performance.py
package             dev                 scripts/check-package.sh
report              dev                 scripts/check-report.py
schema              dev                 scripts/check-schema.sh
sarif               dev                 scripts/check-sarif.py
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
    '') chosen=$(names) ;;
    *) chosen=$* ;;
esac
for name in $chosen; do
    names | grep -qx -e "$name" || {
        echo "test.sh: no step \"$name\"; the steps are:" $(names) >&2
        exit 2
    }
done

table=
failed=
started=$(date +%s)

# A function for the commands above: the tool's tests, on the tool of a preset.
# shellcheck disable=SC2016  # Expanded where the command runs.
tool_tests='tool_tests() {
    [ "$1" != asan ] || export KC2_TOOL_MEMORY=unlimited
    KC2_SPEC_TOOL=$PWD/build/$1/kcodec2_spec build/dev/kcodec2_tool_tests --gtest_brief=1
}
'
# run TITLE COMMAND: runs it, and adds a row to the table. Fails when it fails.
run() {
    printf '\n== %s: %s\n' "$1" "$2"
    before=$(date +%s)
    if sh -eu -c "$tool_tests $2"; then result=passed; else result=FAILED; fi
    row=$(printf '%-24s %-6s %5d s' "$1" $result $(($(date +%s) - before)))
    table="$table$row
"
    printf -- '-- %s\n' "$row"
    [ $result = passed ] || { failed="$failed $1"; return 1; }
}

built=
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

# A step whose presets cannot be built is not run; the build has failed already.
step() {
    for preset in $(presets_of "$1"); do
        build "$preset" || return 1
    done
    run "$1" "$(command_of "$1")"
}

run install "scripts/install-packages.sh test" || exit 1
for name in $chosen; do
    step "$name"
done

printf '\n%s%-24s %-6s %5d s\n' "$table" all '' $(($(date +%s) - started))
if [ -n "$failed" ]; then
    printf '\nFailed:%s\n' "$failed"
    exit 1
fi
printf '\nEverything passed.\n'
