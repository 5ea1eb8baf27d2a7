#!/bin/sh
# Builds the API reference of the exported headers; a warning is an error. Checks that the pages quote
# the limits correctly and link only to files that exist, and that README.md lists every page:
# check-docs.sh [OUTPUT-DIRECTORY]
#
# With OUTPUT-DIRECTORY, the reference stays in OUTPUT-DIRECTORY/html. Needs doxygen. Takes a second.
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
version=$(sed -n 's/^#define KC2_VERSION "\(.*\)"/\1/p' platform/Version.h)
{
    cat docs/Doxyfile
    echo "OUTPUT_DIRECTORY = \"$output\""
    echo "PROJECT_NUMBER = $version"
} | doxygen -
for page in namespacekc2 namespacekc2_1_1Platform classkc2_1_1TargetSpec structkc2_1_1DVConfigs namespacekc2_1_1PixFormat \
        classkc2_1_1Platform_1_1TamraBufferLayout classkc2_1_1Platform_1_1IonInfo; do
    [ -f "$output/html/$page.html" ] || { echo "check-docs: no page $page" >&2; exit 1; }
done

echo "The version is that of CHANGELOG.md"
newest=$(sed -n 's/^## //p' CHANGELOG.md | head -n 1)
released=$(sed -n 's/^## \([0-9].*\)/\1/p' CHANGELOG.md | head -n 1)
[ "$newest" != Unreleased ] || newest=$released+dev
[ "$version" = "$newest" ] || {
    echo "check-docs: platform/Version.h has $version; by CHANGELOG.md it is $newest" >&2
    exit 1
}

echo "Limits, where a page or an example quotes one"
# limit SOURCE NAME UNIT DIVISOR PAGE...: every number before UNIT must be the constant, and some page
# must quote it.
limit() {
    source=$1 name=$2 unit=$3 divisor=$4
    shift 4
    expression=$(sed -n "s/.* $name = \(.*\);/\1/p" "$source" |
        sed "s/size_t{\([0-9]*\)}/\1/; s/'//g")
    value=$((($expression) / $divisor))
    quoted=$(grep -rhoE "[0-9][0-9,]* $unit" "$@" --include=*.md --include=*.h --include=*.cpp |
        tr -d , | sort -u)
    [ "$quoted" = "$value $unit" ] || {
        echo "check-docs: $name is $value $unit, but the pages say: $quoted" >&2
        exit 1
    }
}
of_documents="README.md docs include"
limit targetspec/reading/Limits.h kMaxNesting levels 1 $of_documents
limit targetspec/reading/Limits.h kMaxTextBytes MiB 1048576 $of_documents
limit targetspec/reading/Limits.h kMaxValues values 1 $of_documents
limit tools/kcodec2_spec/report/Matrix.cpp kMostCells cells 1 docs/tool.md
limit tools/kcodec2_spec/report/Page.cpp kMostFindings "distinct findings" 1 docs/tool.md
limit tools/kcodec2_spec/report/Page.cpp kMostCharts charts 1 docs/tool.md
limit tools/kcodec2_spec/report/StepChart.cpp kMostRows rows 1 docs/tool.md

echo "Links between the documents"
broken=0
for document in docs/*.md ./*.md; do
    [ -f "$document" ] || continue
    # Relative targets, without "#" and what follows.
    targets=$(grep -o '](\([^)#:]*\)[^):]*)' "$document" | sed 's/^](//; s/[#)].*//') || true
    for target in $targets; do
        if [ ! -e "$(dirname "$document")/$target" ]; then
            echo "check-docs: $document links to $target, which does not exist" >&2
            broken=1
        fi
    done
done
for document in docs/*.md; do
    name=$(basename "$document")
    [ "$name" = README.md ] || grep -q "](docs/$name)" README.md || {
        echo "check-docs: README.md does not list docs/$name" >&2
        broken=1
    }
done
[ $broken -eq 0 ] || exit 1
echo "check-docs: everything is documented"
