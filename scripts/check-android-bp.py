#!/usr/bin/env python3
"""Checks Android.bp: its layout, its sources against CMake's, and the built-in documents it makes.

Needs bpfmt (blueprint-tools) and what the device preset needs. Prints a line for each check, and
exits with 1 when one fails.
"""

import json
import re
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
BLUEPRINT = ROOT / "Android.bp"
BUILD = ROOT / "build/device"
PRESET = "device"
GENERATED = "EmbeddedDocuments.cpp"

# What belongs together: a title, modules of Android.bp, CMake targets by the directory of their
# CMakeLists.txt and (for a directory with other targets, too) by name, and the directory to which
# the comparison is limited. New files below these directories need no change here; a new directory
# with a target of its own needs a line.
LIBRARY = ("kcodec2_reading", "kcodec2_objects")
GROUPS = (
    ("the library", ["libkcodec2_platform"], ".", (*LIBRARY, "kcodec2_platform"), ""),
    ("the library on the stand-ins", ["libkcodec2_platform_hosted"], ".",
     (*LIBRARY, "kcodec2_platform_hosted"), ""),
    ("the stand-ins", ["libkcodec2_hostplatform"], "hostplatform", None, ""),
    ("the tool for the device", ["kcodec2_spec"], "tools/kcodec2_spec", ("kcodec2_spec_device",),
     "tools/kcodec2_spec/"),
    ("the tool for the host", ["kcodec2_spec_host"], "tools/kcodec2_spec", ("kcodec2_spec",),
     "tools/kcodec2_spec/"),
    ("the tests", ["kcodec2_platform_test"], "tests", ("kcodec2_tests",), ""),
)


class Blueprint:
    """The modules of an Android.bp: those parts of the language that ours uses."""

    TOKEN = re.compile(r'\s+|//[^\n]*|/\*.*?\*/|(?P<token>"(?:[^"\\]|\\.)*"|[\w.]+|[{}\[\]:,])',
                       re.DOTALL)

    def __init__(self, text):
        self._tokens = self._split(text)
        self.modules = {}
        while self._tokens:
            kind = self._tokens.pop(0)
            properties = self._value()
            self.modules[properties["name"]] = {"": kind, **properties}

    def _split(self, text):
        tokens = []
        at = 0
        while at < len(text):
            match = self.TOKEN.match(text, at)
            if not match:
                line = text.count("\n", 0, at) + 1
                sys.exit(f"{BLUEPRINT.name}:{line}: this script cannot read it: {text[at]!r}")
            if match["token"]:
                tokens.append(match["token"])
            at = match.end()
        return tokens

    def _value(self):
        token = self._tokens.pop(0)
        if token == "{":
            properties = {}
            while self._tokens[0] != "}":
                name = self._tokens.pop(0)
                self._tokens.pop(0)  # The colon.
                properties[name] = self._value()
                self._skip_comma()
            self._tokens.pop(0)
            return properties
        if token == "[":
            values = []
            while self._tokens[0] != "]":
                values.append(self._value())
                self._skip_comma()
            self._tokens.pop(0)
            return values
        return json.loads(token)

    def _skip_comma(self):
        if self._tokens[0] == ",":
            self._tokens.pop(0)

    def sources(self, name):
        """The source files of a module, with what its defaults and generators add."""
        module = self.modules[name]
        files = self._expand(module.get("srcs", []))
        for generator in module.get("generated_sources", []):
            files.update(self.modules[generator]["out"])
        for defaults in module.get("defaults", []):
            files |= self.sources(defaults)
        return files

    @staticmethod
    def _expand(patterns):
        files = {pattern for pattern in patterns if "*" not in pattern}
        for pattern in set(patterns) - files:
            files.update(path.relative_to(ROOT).as_posix() for path in ROOT.glob(pattern))
        return files


class CMakeTargets:
    """The targets of the device preset, as CMake's file API tells them."""

    def __init__(self):
        query = BUILD / ".cmake/api/v1/query/codemodel-v2"
        query.parent.mkdir(parents=True, exist_ok=True)
        query.touch()
        run(["cmake", "--preset", PRESET])
        run(["cmake", "--build", "--preset", PRESET, "--target", GENERATED])
        reply = BUILD / ".cmake/api/v1/reply"
        index = json.loads(max(reply.glob("index-*.json")).read_text())
        model_file = index["reply"]["codemodel-v2"]["jsonFile"]
        model = json.loads((reply / model_file).read_text())
        self.targets = [json.loads((reply / target["jsonFile"]).read_text())
                        for target in model["configurations"][0]["targets"]]

    def sources(self, directory, names):
        files = set()
        for target in self.targets:
            if target["paths"]["source"] == directory and (
                    names is None or target["name"] in names):
                files.update(Path(source["path"]).name if source.get("isGenerated")
                             else source["path"] for source in target.get("sources", []))
        return {file for file in files if file.endswith(".cpp")}


def run(command):
    result = subprocess.run(command, cwd=ROOT, text=True, stdout=subprocess.PIPE,
                            stderr=subprocess.STDOUT)
    if result.returncode != 0:
        sys.exit(f"{result.stdout}check-android-bp.py: failed: {' '.join(map(str, command))}")
    return result.stdout


# Each check returns what is wrong, a line each.

def check_layout():
    return run(["bpfmt", "-d", str(BLUEPRINT)]).splitlines()


def check_sources(in_blueprint, in_cmake):
    return ([f"{file} is only in CMake's list" for file in sorted(in_cmake - in_blueprint)] +
            [f"{file} is only in {BLUEPRINT.name}" for file in sorted(in_blueprint - in_cmake)])


def check_documents(blueprint):
    """Runs the generator as Soong would."""
    rule = blueprint.modules["kcodec2_embedded_documents"]
    with tempfile.TemporaryDirectory() as directory:
        output = Path(directory) / rule["out"][0]
        command = re.sub(r"\$\(location (\S+)\)", r"\1", rule["cmd"])
        command = command.replace("$(out)", str(output)).replace("$(in)", " ".join(rule["srcs"]))
        run(["sh", "-c", command])
        same = output.read_bytes() == (BUILD / GENERATED).read_bytes()
    return [] if same else [f"{GENERATED} differs from CMake's"]


def main():
    blueprint = Blueprint(BLUEPRINT.read_text())
    cmake = CMakeTargets()
    results = [("bpfmt finds nothing to change", check_layout()),
               ("the same built-in documents as CMake's", check_documents(blueprint))]
    for title, modules, directory, names, prefix in GROUPS:
        in_blueprint, in_cmake = (
            {file for file in files if file.startswith(prefix)}
            for files in (set().union(*map(blueprint.sources, modules)),
                          cmake.sources(directory, names)))
        results.append((f"{title}: {len(in_cmake)} sources, the same as CMake's",
                        check_sources(in_blueprint, in_cmake)))
    for title, wrong in results:
        print(f"{'FAILED' if wrong else 'ok':6} {title}")
        for line in wrong:
            print(f"       {line}")
    sys.exit(1 if any(wrong for _, wrong in results) else 0)


if __name__ == "__main__":
    main()
