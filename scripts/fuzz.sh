#!/bin/sh
# Runs each fuzz target for a bounded time, with ASan and UBSan, on the device's object code:
# fuzz.sh [SECONDS] (20 for each target by default). Inputs that fail are kept in build/asan/fuzz-found.
# Then the inputs that the targets kept run once more in a phone's build, with libc++ and its JsonCpp.
set -eu

seconds=${1:-20}
case $seconds in
    '' | 0* | *[!0-9]*)
        echo "usage: fuzz.sh [SECONDS]; SECONDS is a whole number above 0, not \"$seconds\"" >&2
        exit 2 ;;
esac

cd "$(dirname "$0")/.."
build=build/asan
work=$build/fuzz-work
found=$build/fuzz-found

cmake --preset asan > /dev/null
cmake --build --preset asan --target fuzz_document fuzz_values fuzz_check fuzz_fix \
    fuzz_tree fuzz_log fuzz_editor

# Seeds: the built-in documents, the examples, and hand-written ones, under different names.
rm -rf "$work/seeds"
mkdir -p "$work/seeds" "$found"
find targetspec/defaults tests/fuzz/corpus examples -name '*.json' | while read -r document; do
    cp "$document" "$work/seeds/$(echo "$document" | tr / _)"
done

# run TARGET OPTION...: shows libFuzzer's output when it finds something, otherwise its figures.
run() {
    target=$1
    shift
    mkdir -p "$work/$target"
    echo "fuzz.sh: $target for $seconds s"
    if ! "$build/$target" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 -verbosity=0 \
        -print_final_stats=1 -artifact_prefix="$found/$target-" "$@" > "$work/$target.log" 2>&1
    then
        cat "$work/$target.log"
        echo "fuzz.sh: $target found something; the input is in $found/" >&2
        exit 1
    fi
    grep -E "executed_units|exec_per_sec" "$work/$target.log"
}

# Short stacks for allocations: recording full ones would take half of the time. A small quarantine for
# freed memory, so that a long run stays far from its limit.
export ASAN_OPTIONS=malloc_context_size=5:quarantine_size_mb=64

run fuzz_document -dict=tests/fuzz/json.dict -max_len=20000 "$work/fuzz_document" "$work/seeds"
run fuzz_values -max_len=4000 "$work/fuzz_values"
run fuzz_check -dict=tests/fuzz/json.dict -max_len=4000 "$work/fuzz_check" "$work/seeds"
run fuzz_fix -dict=tests/fuzz/json.dict -max_len=4000 "$work/fuzz_fix" "$work/seeds"
run fuzz_tree -dict=tests/fuzz/json.dict -max_len=4000 "$work/fuzz_tree" tests/fuzz/corpus/trees
run fuzz_log -max_len=8000 "$work/fuzz_log" tests/fuzz/corpus/logs
run fuzz_editor -dict=tests/fuzz/json.dict -max_len=4000 "$work/fuzz_editor" tests/fuzz/corpus/editor \
    "$work/seeds"

cmake --preset phone-exceptions > /dev/null
cmake --build --preset phone-exceptions --target fuzz_document fuzz_values
for target in fuzz_document fuzz_values; do
    echo "fuzz.sh: $target in a phone's build"
    build/phone-exceptions/$target "$work/$target"
done
echo "fuzz.sh: nothing found"
