#!/bin/sh
# Builds the API reference of the exported headers; a warning is an error. Checks that the documents
# under docs/ link only to files that exist: check-docs.sh [OUTPUT-DIRECTORY]
#
# The reference is left in OUTPUT-DIRECTORY/html when one is given. Needs doxygen. Takes a second.
set -eu

cd "$(dirname "$0")/.."
if [ $# -gt 0 ]; then
    output=$1
    mkdir -p "$output"
else
    output=$(mktemp -d)
    trap 'rm -rf "$output"' EXIT
fi

echo "API reference of include/kc2, without a warning"
version=$(sed -n 's/^#define KC2_VERSION "\(.*\)"/\1/p' base/Version.h)
{
    cat docs/Doxyfile
    echo "OUTPUT_DIRECTORY = \"$output\""
    echo "PROJECT_NUMBER = $version"
} | doxygen -
for page in namespacekc2 namespacekc2_1_1Platform classkc2_1_1TargetSpec structkc2_1_1DVConfigs namespacekc2_1_1PixFormat \
        classkc2_1_1Platform_1_1TamraBufferLayout classkc2_1_1Platform_1_1IonInfo; do
    [ -f "$output/html/$page.html" ] || { echo "check-docs: no page $page" >&2; exit 1; }
done

echo "Links between the documents"
broken=0
for document in docs/*.md README.md; do
    [ -f "$document" ] || continue
    # Relative targets, without the part behind "#".
    targets=$(grep -o '](\([^)#:]*\)[^):]*)' "$document" | sed 's/^](//; s/[#)].*//') || true
    for target in $targets; do
        if [ ! -e "$(dirname "$document")/$target" ]; then
            echo "check-docs: $document links to $target, which does not exist" >&2
            broken=1
        fi
    done
done
[ $broken -eq 0 ] || exit 1
echo "check-docs: everything is documented"
