#!/usr/bin/env python3
"""Checks what Soong does not check in the Android.bp files: their format, that they build the sources
that CMake builds, and that they link for its page size.

Gets the sources from Soong (scripts/soong/platform_tree.py) and from CMake, and builds nothing. Also
needs bpfmt (blueprint-tools). Prints a line for each check, and exits with 1 when one fails.
"""

import json
import re
import subprocess
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent / "soong"))
sys.dont_write_bytecode = True  # It would be in the source tree.
from platform_tree import (BOTH, BUILD, OURS, ROOT, PlatformTree, fail, run,  # noqa: E402
                           source_files)

GENERATED = "EmbeddedDocuments.cpp"
# A title, Soong modules, CMake targets. A new target needs a line.
LIBRARY = ("kcodec2_reading", "kcodec2_objects")
GROUPS = (
    ("the library", ("libkcodec2_platform", "libkcodec2_reading"), (*LIBRARY, "kcodec2_platform")),
    ("the library on the stand-ins", ("libkcodec2_platform_hosted", "libkcodec2_reading"),
     (*LIBRARY, "kcodec2_platform_hosted")),
    ("the stand-ins", ("libkcodec2_hostplatform",), ("kcodec2_hostplatform",)),
    ("the tool for the device", ("kcodec2_spec",), ("kcodec2_spec_objects", "kcodec2_spec_device")),
    ("the tool for the host", ("kcodec2_spec_host",), ("kcodec2_spec_objects", "kcodec2_spec")),
    ("the tests", ("kcodec2_platform_test",), ("kcodec2_tests",)),
)


def soong_sources(tree, modules):
    files = set()
    for module in modules:
        for variant in tree.modules()[module]:
            files.update(tree.objects(module, variant).values())
    return {Path(file).name if "/gen/" in file else str(Path(file).relative_to(OURS))
            for file in files}


def cmake_sources():
    """The sources of each target of a device build, from CMake's file API."""
    build = BUILD / "cmake"
    query = build / ".cmake/api/v1/query/codemodel-v2"
    query.parent.mkdir(parents=True, exist_ok=True)
    query.touch()
    run(["cmake", "-S", str(ROOT), "-B", str(build), "-G", "Ninja", "-DKC2_PLATFORM=device"])
    reply = build / ".cmake/api/v1/reply"
    index = json.loads(max(reply.glob("index-*.json")).read_text())
    model = json.loads((reply / index["reply"]["codemodel-v2"]["jsonFile"]).read_text())
    targets = (json.loads((reply / target["jsonFile"]).read_text())
               for target in model["configurations"][0]["targets"])
    return {target["name"]: {Path(source["path"]).name if source.get("isGenerated")
                             else source["path"] for source in target.get("sources", [])
                             if source["path"].endswith(".cpp")} for target in targets}


def differences(in_soong, in_cmake):
    return ([f"{file} is only in CMake's list" for file in sorted(in_cmake - in_soong)] +
            [f"{file} is only in Android.bp" for file in sorted(in_soong - in_cmake)])


def page_sizes(tree):
    """64-bit variants of the library that are not linked for the pages that CMake links it for."""
    wanted = re.search(r"max-page-size=(\d+)", (ROOT / "CMakeLists.txt").read_text())[1]
    wrong = []
    for module in ("libkcodec2_platform", "libkcodec2_platform_hosted"):
        shared = [variant for variant in tree.modules()[module]
                  if re.search("64.*_shared$", variant)]
        wrong += [] if shared else [f"{module} has no 64-bit variant"]
        for variant in shared:
            flags = re.search(r"^ *ldFlags = (.*)$", tree.text(module, variant), re.MULTILINE)
            sizes = re.findall(r"max-page-size=(\d+)", flags[1]) if flags else []
            if sizes[-1:] != [wanted]:  # The last one is used.
                wrong.append(f"{module}, {variant}: {sizes}, not {wanted}")
    return wrong


def check_layout():
    files = sorted(str(file) for file in source_files() if file.suffix == ".bp")
    result = subprocess.run(["bpfmt", "-d", *files], cwd=ROOT, text=True, capture_output=True)
    return (result.stdout + result.stderr).splitlines()


def main():
    tree = PlatformTree("lists")
    errors = tree.resolve(BOTH)
    if errors:
        fail(errors)
    cmake = cmake_sources()
    results = [("bpfmt finds nothing to change", check_layout())]
    for title, modules, targets in GROUPS:
        expected = set().union(*(cmake[target] for target in targets))
        results.append((f"{title}: {len(expected)} sources, the same as CMake's",
                        differences(soong_sources(tree, modules), expected)
                        if expected else ["CMake has none"]))
    results.append(("64-bit libraries are linked for the page size that CMake has", page_sizes(tree)))
    for title, wrong in results:
        print(f"{'FAILED' if wrong else 'ok':6} {title}")
        for line in wrong:
            print(f"       {line}")
    sys.exit(1 if any(wrong for _, wrong in results) else 0)


if __name__ == "__main__":
    main()
