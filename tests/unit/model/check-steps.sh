#!/bin/sh
# Checks that the model takes the steps of the code, in the same order and with the same orderings:
# check-steps.sh TargetSpec.cpp GetModel.cpp
set -eu

# steps FILE: a line for each access to what the threads share, from Get() on.
steps() {
    sed -n '/Get(.*) {$/,$ p' "$1" | sed 's/VAR(mInstance)/mInstance/g; s/VAR(mInstance->/mInstance->(/' |
        grep -oE '(mLock|mIsInitialized)\.[a-z]+\(.*_(relaxed|consume|acquire|release|acq_rel|seq_cst)|return mInstance|mInstance = |mInstance->[(]?mStatus' |
        sed -E 's/\(([01]|true|false)?.*_(relaxed|consume|acq_rel|seq_cst|acquire|release)/ \1 \2/; s/->\(/->/'
}

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT
steps "$1" > "$scratch/code"
steps "$2" > "$scratch/model"
cat "$scratch/code"
[ "$(wc -l < "$scratch/code")" -ge 9 ] || { echo "check-steps: $1 no longer reads as it did" >&2; exit 1; }
diff "$scratch/code" "$scratch/model" || { echo "check-steps: the model is not the code's" >&2; exit 1; }
