"""A small platform tree around ours, in which Soong resolves the modules of our Android.bp files.

Needs Go and Debian's Soong (golang-go, golang-android-soong-dev), ninja and the headers that the
tool and the tests are built with. The tree is in build/soong and is made anew each time.
"""

import json
import os
import re
import shutil
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
BUILD = ROOT / "build/soong"
HERE = Path(__file__).resolve().parent
# Where our tree is in it, and where the example is, as a vendor's own.
OURS = "vendor/kcodec2_platform"
IMAGE = "vendor/orvelle"

# What this release of Soong expects in a platform's tree: folders of compilers, files that only have
# to exist, headers.
GCC_HOST = "prebuilts/gcc/linux-x86/host/x86_64-linux-glibc2.17-4.8"
CLANG_HOST = "prebuilts/clang/host/linux-x86/clang-r399163b"
PLATFORM_FILES = ("bionic/libc.map.txt", "bionic/libm.map.txt", "bionic/libdl.map.txt",
                  "build/soong/cc/config/cfi_exports.map")
PLATFORM_FOLDERS = ("prebuilts/ndk/current/sources/cxx-stl/llvm-libc++/libs",)
HEADERS = {"json": "/usr/include/jsoncpp/json", "CLI": "/usr/include/CLI",
           "fmt": "/usr/include/fmt", "gtest": "/usr/include/gtest"}

ARM64 = {"DeviceArch": "arm64", "DeviceArchVariant": "armv8-a", "DeviceAbi": ["arm64-v8a"]}
ARM = {"DeviceArch": "arm", "DeviceArchVariant": "armv7-a-neon", "DeviceAbi": ["armeabi-v7a"]}
BOTH = {**ARM64, **{key.replace("Device", "DeviceSecondary"): value for key, value in ARM.items()}}
# A vendor partition of a separate release, as a product of this release of Soong has it.
VENDOR = {"DeviceVndkVersion": "current"}


def fail(message):
    sys.exit(f"{Path(sys.argv[0]).name}: {message}")


def run(command, **options):
    result = subprocess.run(command, text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                            **options)
    if result.returncode != 0:
        fail(f"failed: {' '.join(map(str, command))}\n{result.stdout}")
    return result.stdout


def source_files():
    """The files of the source tree, from its root, without those of builds; it may be without git."""
    for folder, folders, files in os.walk(ROOT):
        folders[:] = [name for name in folders if name not in (".git", "__pycache__")
                      and (name != "build" or Path(folder) != ROOT)]
        for name in files:
            if name != ".git":  # A file, in a worktree.
                yield (Path(folder) / name).relative_to(ROOT)


def build_program(name, package):
    """Builds a Go program, with Debian's Go packages only."""
    BUILD.mkdir(parents=True, exist_ok=True)
    run(["go", "build", "-o", str(BUILD / name), package], cwd=HERE,
        env={**os.environ, "GO111MODULE": "off", "GOPATH": "/usr/share/gocode",
             "GOCACHE": str(BUILD / "go-cache")})
    return BUILD / name


class PlatformTree:
    """Made once; its files may be changed between two calls of resolve()."""

    def __init__(self, name):
        self.path = BUILD / name
        self._resolver = build_program("resolve", ".")
        self._sandbox = build_program("sbox", "android/soong/cmd/sbox")
        shutil.rmtree(self.path, ignore_errors=True)
        self._copy_ours()
        shutil.copytree(ROOT / "examples/image", self.path / IMAGE)
        self._lay_out_platform()

    def _copy_ours(self):
        for file in source_files():
            copy = self.path / OURS / file
            copy.parent.mkdir(parents=True, exist_ok=True)
            shutil.copy2(ROOT / file, copy)

    def _lay_out_platform(self):
        self.write("external/Android.bp", (HERE / "stand-ins.bp").read_text())
        self.write("external/tool/Android.bp", (HERE / "stand-ins-tool.bp").read_text())
        for name, folder in HEADERS.items():
            self._link(f"external/include/{name}", folder)
            self._link(f"external/tool/include/{name}", folder)
        self._link("external/liblog/android", ROOT / "hostplatform/include/android")
        # The runtime's modules of Soong's own tests have no headers.
        self.write("bionic/Android.bp", re.sub(
            r'name: "libc\+\+(_static)?",', r'\g<0> export_system_include_dirs: ["libc++"],',
            run([str(self._resolver), "--runtime"])))
        for file in PLATFORM_FILES:
            self.write(file, "")
        for folder in PLATFORM_FOLDERS:
            (self.path / folder).mkdir(parents=True)
        clang = self._clang()
        self._link(CLANG_HOST, clang)
        self._link("bionic/libc++", clang / "include/c++/v1")
        self._link(f"{GCC_HOST}/sysroot", "/")

    @staticmethod
    def _clang():
        """The folder of the newest Clang on this machine that has libc++."""
        found = [folder for folder in Path("/usr/lib").glob("llvm-*")
                 if (folder / "bin/clang++").exists() and (folder / "include/c++/v1").exists()]
        if not found:
            fail("no Clang with libc++ below /usr/lib")
        return max(found, key=lambda folder: int(folder.name.split("-")[1]))

    def _link(self, place, target):
        link = self.path / place
        link.parent.mkdir(parents=True, exist_ok=True)
        link.symlink_to(target)

    def read(self, file):
        return (self.path / file).read_text()

    def write(self, file, text):
        path = self.path / file
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)

    def resolve(self, product):
        """The errors that Soong reports, as one text; empty when it resolves."""
        out = self.path / "out"
        shutil.rmtree(out, ignore_errors=True)
        # Soong expects its builder and its other programs in the folder that it writes to.
        (out / "host/linux-x86/bin").mkdir(parents=True)
        os.link(self._resolver, out / self._resolver.name)
        os.link(self._sandbox, out / "host/linux-x86/bin" / self._sandbox.name)
        variables = {"HostArch": "x86_64", "DeviceName": "device", "Platform_sdk_version": 30,
                     "Platform_sdk_codename": "S", "Platform_version_active_codenames": ["S"],
                     "Platform_vndk_version": "S", **product}
        (out / "soong.variables").write_text(json.dumps(variables))
        result = subprocess.run([f"out/{self._resolver.name}", *self._blueprints()],
                                cwd=self.path, text=True, stdout=subprocess.DEVNULL,
                                stderr=subprocess.PIPE)
        if result.returncode != 0:
            return result.stderr or f"it ended with {result.returncode}"
        self._read_build_file()
        return ""

    def _blueprints(self):
        """The Android.bp files that Soong's finder finds."""
        files = []
        for folder, folders, names in os.walk(self.path):
            if ".find-ignore" in names:
                folders.clear()
                continue
            if "Android.bp" in names:
                files.append(os.path.relpath(os.path.join(folder, "Android.bp"), self.path))
        return sorted(files)

    def _read_build_file(self):
        """Splits the build's file at the heading that Soong writes before each module."""
        self._parts = {}
        heading = re.compile(r"^# Module:  (\S+)\n# Variant: ?(\S*)\n", re.MULTILINE)
        parts = heading.split(self.read("out/build.ninja").replace("$\n", ""))
        for name, variant, text in zip(parts[1::3], parts[2::3], parts[3::3]):
            self._parts.setdefault(name, {})[variant] = text

    def modules(self):
        """The names of the variants of each module."""
        return {name: set(variants) for name, variants in self._parts.items()}

    def text(self, module, variant):
        """The part of the build's file for a variant."""
        return self._parts[module][variant]

    def objects(self, module, variant):
        """The object files of a variant, with the source of each."""
        text = self.text(module, variant)
        return dict(re.findall(r"^build +(\S+\.o) *: g\.cc\.cc +(\S+)", text, re.MULTILINE))

    def ninja(self, *arguments):
        """Builds what needs only headers from the platform."""
        return subprocess.run(["ninja", "-f", "out/build.ninja", *arguments], cwd=self.path,
                              text=True, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
