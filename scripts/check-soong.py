#!/usr/bin/env python3
"""Lets Soong read the Android.bp files, in a small platform tree around ours.

check-soong.py [--graph]. Resolves the modules for several products, compares the resulting variants
with the expected ones, and plants faults, each of which Soong must report. Then it runs what Soong
would run on the build machine: it generates the built-in documents and compiles every source of the
host's modules and tests with Soong's flags, for errors and warnings only. --graph compiles nothing.

scripts/soong/platform_tree.py lists what it needs. Takes two minutes on two cores, with --graph a few
seconds.
"""

import os
import re
import sys
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parent / "soong"))
sys.dont_write_bytecode = True  # It would be in the source tree.
from platform_tree import (ARM, ARM64, BOTH, BUILD, HERE, IMAGE, OURS, VENDOR,  # noqa: E402
                           PlatformTree, fail)

TOOL = f"{OURS}/tools/kcodec2_spec"
HOST = "linux_glibc_x86_64"

# What a module may produce, by the beginning of its variants' names and its kind of output.
# "vendor" is a vendor's library of a product whose vendor partition is a separate release.
VARIANTS = {
    "vendor arm64": "android_vendor.S_arm64_armv8-a",
    "vendor arm": "android_vendor.S_arm_armv7-a-neon",
    "arm64": "android_arm64_armv8-a",
    "arm": "android_arm_armv7-a-neon",
    "host": HOST,
}
# A program is built for the first architecture of a product, a library and a test for each.
PRODUCTS = (
    ("arm64 and arm, vendor by itself", {**BOTH, **VENDOR}, {
        "libkcodec2_platform": ("vendor arm64", "vendor arm"),
        "kcodec2_spec": ("vendor arm64",),
        "kcodec2_spec_host": ("host",),
        "kcodec2_platform_test": ("arm64", "arm", "host"),
        "video_system_specs_orvelle": ("arm64",),
        "video_system_specs_default": ("arm64",)}),
    ("arm alone, vendor by itself", {**ARM, **VENDOR}, {
        "libkcodec2_platform": ("vendor arm",),
        "kcodec2_spec": ("vendor arm",),
        "kcodec2_platform_test": ("arm", "host")}),
    ("arm64 alone", ARM64, {
        "libkcodec2_platform": ("arm64",),
        "kcodec2_spec": ("arm64",),
        "kcodec2_platform_test": ("arm64", "host")}),
    ("arm64 and arm", BOTH, {
        "libkcodec2_platform": ("arm64", "arm"),
        "kcodec2_spec": ("arm64",),
        "kcodec2_platform_test": ("arm64", "arm", "host")}),
)

# A fault: its name, the file, the text there, what replaces it, what Soong must report.
FAULTS = (
    ("a misspelt property", f"{OURS}/Android.bp", "version_script:", "version_scrpt:",
     'unrecognized property "version_scrpt"'),
    ("a misspelt module type", f"{TOOL}/Android.bp", "cc_binary_host {", "cc_binary_hst {",
     'unrecognized module type "cc_binary_hst"'),
    ("a missing dependency", f"{OURS}/Android.bp", '"liblog",', '"liblogg",',
     'depends on undefined module "liblogg"'),
    ("a missing source", f"{OURS}/Android.bp", "tests/unit/LogTest.cpp", "tests/unit/LgTest.cpp",
     'tests/unit/LgTest.cpp" does not exist'),
    ("a missing export map", f"{OURS}/Android.bp", '"libkcodec2_platform.map.txt"', '"other.txt"',
     'other.txt" does not exist'),
    ("the stand-ins in the vendor's library", f"{OURS}/Android.bp", '"libkcodec2_base",',
     '"libkcodec2_hostplatform",',
     '"libkcodec2_hostplatform" of "libkcodec2_platform" missing variant'),
    ("a part of the library without its host variant", f"{OURS}/Android.bp",
     'name: "libkcodec2_reading",',
     'name: "libkcodec2_reading", target: { host: { enabled: false } },',
     'depends on disabled module "libkcodec2_reading"'),
    ("a platform's library without its vendor variant", "external/Android.bp",
     'name: "libjsoncpp",', 'name: "libjsoncpp", vendor_available: false,',
     r'"libjsoncpp" of "\w+" missing variant:\s+os:android, image:vendor'),
    ("a tree without CLI11, and with the tool", "external/tool/Android.bp", 'name: "libcli11",',
     'name: "libcli12",', 'depends on undefined module "libcli11"'),
    ("a vendor's module that uses a part of the library", f"{IMAGE}/Android.bp",
     "genrule_defaults {",
     'cc_binary { name: "taker", vendor: true, static_libs: ["libkcodec2_reading"] }\n'
     "genrule_defaults {", "libkcodec2_reading which is not visible to this module"),
    ("the example without the tool for the host", f"{IMAGE}/Android.bp", '["kcodec2_spec_host"]',
     '["kcodec2_spec_hst"]', 'depends on undefined module "kcodec2_spec_hst"'),
    ("the example without its document", f"{IMAGE}/Android.bp", '["odm/etc/', '["odm/etcetera/',
     "video_system_specs.json.* does not exist"),
)

SANITIZERS = """
    sanitize: {
        cfi: true,
        integer_overflow: true,
        misc_undefined: ["bounds"],
    },
"""
# What the library's commands must contain when they are on. Soong has no CFI for 32-bit arm.
SANITIZER_FLAGS = {"vendor arm64": ("cfi", "unsigned-integer-overflow", "bounds"),
                   "vendor arm": ("unsigned-integer-overflow", "bounds")}


def report(title, wrong):
    print(f"{'FAILED' if wrong else 'ok':6} {title}")
    for line in wrong.splitlines():
        print(f"       {line}")
    sys.stdout.flush()
    return not wrong


class Changed:
    """A file of the tree with one place changed, within a "with" block."""

    def __init__(self, tree, file, old, new):
        self._tree, self._file = tree, file
        self._text = tree.read(file)
        if old not in self._text:
            fail(f"{file} no longer has the place to change: {old}")
        self._new = self._text.replace(old, new, 1)

    def __enter__(self):
        self._tree.write(self._file, self._new)

    def __exit__(self, *_):
        self._tree.write(self._file, self._text)


def missing_variants(tree, expected):
    lines = []
    for module, names in expected.items():
        found = tree.modules().get(module, set())
        found = {variant.removesuffix("_shared") for variant in found}
        wanted = {VARIANTS[name] for name in names}
        if found != wanted:
            lines.append(f"{module} comes out as {sorted(found)}, not {sorted(wanted)}")
    return "\n".join(lines)


def check_products(tree):
    for title, product, expected in PRODUCTS:
        yield report(f"resolves for {title}",
                     tree.resolve(product) or missing_variants(tree, expected))


def check_faults(tree):
    for title, file, old, new, message in FAULTS:
        with Changed(tree, file, old, new):
            errors = tree.resolve({**BOTH, **VENDOR})
        wrong = "" if re.search(message, errors) else f"Soong says: {errors or 'nothing'}"
        yield report(f"finds {title}", wrong)


def check_sanitizers(tree):
    place = 'name: "libkcodec2_platform_objects_defaults",'
    with Changed(tree, f"{OURS}/Android.bp", place, place + SANITIZERS):
        wrong = tree.resolve({**BOTH, **VENDOR})
    if not wrong:
        for name, flags in SANITIZER_FLAGS.items():
            variants = tree.modules()["libkcodec2_platform"]
            text = "".join(tree.text("libkcodec2_platform", variant) for variant in variants
                           if variant.startswith(VARIANTS[name]))
            wrong += "".join(f"{name} without {flag}\n" for flag in flags
                             if not re.search(f"-fsanitize=[^ ]*{flag}", text))
    yield report("resolves with the sanitizers cfi, integer_overflow and bounds", wrong)


def check_without_tool(tree):
    """As in a platform's tree without CLI11, with the file that ends Soong's search."""
    kept = tree.read("external/tool/Android.bp")
    tree.write(f"{TOOL}/.find-ignore", "")
    tree.write(f"{IMAGE}/.find-ignore", "")
    tree.write("external/tool/Android.bp", "")
    wrong = tree.resolve({**BOTH, **VENDOR}) or missing_variants(tree, {
        "libkcodec2_platform": ("vendor arm64", "vendor arm"), "kcodec2_spec": (),
        "kcodec2_platform_test": ("arm64", "arm", "host")})
    tree.write("external/tool/Android.bp", kept)
    (tree.path / TOOL / ".find-ignore").unlink()
    (tree.path / IMAGE / ".find-ignore").unlink()
    yield report("resolves without the tool, CLI11 and {fmt}", wrong)


def check_compiles(tree):
    os.environ["CC_WRAPPER"] = str(HERE / "look-over.sh")
    errors = tree.resolve(BOTH)
    if errors:
        yield report("resolves for the compiler", errors)
        return
    objects = [file for module, variants in tree.modules().items() if "kcodec2" in module
               for variant in variants if variant.startswith(HOST)
               for file in tree.objects(module, variant)]
    result = tree.ninja("-k0", *objects)
    title = f"{len(objects)} sources compile with Soong's flags for the host"
    yield report(title, "" if result.returncode == 0 and objects else result.stdout)
    source = f"{OURS}/tests/unit/Device.cpp"
    planted = [file for file in objects if file.endswith("/tests/unit/Device.o")]
    place = "namespace kc2::test {"
    with Changed(tree, source, place, f"int thrown() {{ throw 1; }}\n{place}"):
        result = tree.ninja(*planted)
    found = "cannot use 'throw' with exceptions disabled" in result.stdout
    yield report("finds a test that throws", "" if found else result.stdout)


def main():
    if sys.argv[1:] not in ([], ["--graph"]):
        sys.exit("usage: check-soong.py [--graph]")
    tree = PlatformTree("tree")
    checks = [check_products, check_faults, check_sanitizers, check_without_tool]
    if not sys.argv[1:]:
        checks.append(check_compiles)
    passed = [each for check in checks for each in check(tree)]
    if not all(passed):
        fail(f"{passed.count(False)} of {len(passed)} failed; the tree is {BUILD / 'tree'}")


if __name__ == "__main__":
    main()
