#!/usr/bin/env python3
"""Checks a built library as a loader and a linker see it: check-binary.py LIBRARY

LIBRARY is one of a host build or of a device build, of 32 or 64 bits, with its symbol table (not
stripped). Prints a line for each check, and exits with 1 when one fails. Reads it with llvm-readelf,
which knows the packed relocations of Android's linker.
"""

import re
import subprocess
import sys
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parent.parent
MAP = ROOT / "libkcodec2_platform.map.txt"
KEYS_HEADER = ROOT / "include/kc2/TargetSpecKeys.h"
SONAME = "libkcodec2_platform.so"

# Defined by the device: liblog and the base library. "*" is the mangled std::string.
PLATFORM_NAMES = (
    r"__android_log_print",
    r"_ZN3kc211gC2LogLevelE",
    r"_ZN3kc214updateLogLevelEv",
    r"_ZN3kc22OS14SystemProperty3Get.*EPKcS\d_",
    r"_ZN3kc29PixFormat3StrEj",
)
HOST_NAMES = r"_ZN3kc24host.*"
JSONCPP_NAMES = r"_ZNK?4Json.*"
# Symbols of the C and C++ libraries have a version in most builds. For those without: the names of
# the C++ library, and the functions of the C library that are used.
STANDARD_VERSIONS = r"(GLIBC|GLIBCXX|CXXABI|GCC|LIBC)(_\S*)?"
CXX_NAMES = (r"(_ZNK?S[tabisod]|_ZSt|_ZT[VT]N?S[tabisod]|_ZTv0_n\d+_NSt|_ZTVN10__cxxabiv1|"
             r"_Zn[wa][jm]|_Zd[la]Pv|__gxx_personality_v0).*")
C_NAMES = (r"abort|trunc|ceilf|log2f|f?stat(64)?|open(64)?|read|close|v?snprintf|bcmp|strlen|strn?cmp|"
           r"f(open|close|read|write|flush)(64)?|f(seek|tell)o?(64)?|mem(chr|cmp|cpy|move|set)|"
           r"__errno(_location)?|__\w+_chk|__open(64)?_2|__stack_chk_(fail|guard)|__cxa_atexit|"
           r"__cxa_pure_virtual|__aeabi_\w+")
# Hooks of the toolchain that may be absent at run time.
OPTIONAL_NAMES = r"__gmon_start__|_ITM_.*|__cxa_finalize.*"

# What the largest page of a device is aligned to. Such devices run 64-bit code only.
PAGE_SIZE = 16384

# What a throw, a catch or a clean-up during an exception refers to.
EXCEPTION_NAMES = (r"__cxa_(throw|rethrow|begin_catch|end_catch|allocate_exception)|_Unwind_Resume|"
                   r"__gxx_personality_v0")


class Symbol:
    def __init__(self, fields):
        self.address = int(fields[1], 16)
        self.size = int(fields[2], 0)
        self.type, self.binding = fields[3], fields[4]
        self.section = fields[6]
        self.name, _, version = (fields[7] if len(fields) > 7 else "").partition("@")
        self.version = version.lstrip("@")

    @property
    def is_undefined(self):
        return self.section == "UND"


class Section(NamedTuple):
    name: str
    address: int
    offset: int  # In the file.
    size: int
    flags: str


class Library:
    """The parts of an ELF file that the checks use, as llvm-readelf prints them."""

    def __init__(self, path):
        self.path = path
        self.content = Path(path).read_bytes()
        self.pointer_size = 8 if self.content[4:5] == b"\2" else 4  # The class: 64 or 32 bits.
        self.dynamic_symbols = self._symbols("--dyn-syms")
        self.symbols = self._symbols("--symbols")
        self.dynamic = self._readelf("--dynamic")
        self.segments = self._readelf("--program-headers")
        self.sections = {}
        for line in self._readelf("--section-headers").splitlines():
            match = re.match(r"\s*\[\s*(\d+)\]\s+(\S+)\s+\S+\s+([0-9a-f]+)\s+([0-9a-f]+)"
                             r"\s+([0-9a-f]+)\s+[0-9a-f]+\s+([A-Zop]*)\s", line)
            if match:
                number, name, address, offset, size, flags = match.groups()
                self.sections[number] = Section(name, int(address, 16), int(offset, 16),
                                                int(size, 16), flags)

    def _readelf(self, option):
        return subprocess.run(["llvm-readelf", "--wide", option, self.path], check=True,
                              text=True, stdout=subprocess.PIPE).stdout

    def _symbols(self, option):
        lines = self._readelf(option).split("Symbol table '.symtab'")
        text = lines[-1] if option == "--symbols" and len(lines) > 1 else lines[0]
        return [Symbol(line.split()) for line in text.splitlines() if re.match(r"\s*\d+: ", line)]

    def exported(self, name):
        found = [symbol for symbol in self.dynamic_symbols
                 if symbol.name == name and not symbol.is_undefined]
        return found[0] if found else None

    def undefined(self):
        return [symbol for symbol in self.dynamic_symbols if symbol.is_undefined and symbol.name]

    def needed(self):
        return re.findall(r"\(NEEDED\).*\[(.*)\]", self.dynamic)

    @property
    def is_of_host(self):
        return any("kcodec2_hostplatform" in name for name in self.needed())

    def relro(self):
        """The addresses that are read-only once the library is loaded: start and end."""
        match = re.search(r"GNU_RELRO\s+0x[0-9a-f]+ 0x([0-9a-f]+) \S+ \S+ 0x([0-9a-f]+)",
                          self.segments)
        return (int(match[1], 16), int(match[1], 16) + int(match[2], 16)) if match else (0, 0)

    def alignments(self):
        """Of the loadable segments."""
        return [int(alignment, 16) for alignment in
                re.findall(r"^\s*LOAD .* (0x[0-9a-f]+)$", self.segments, re.MULTILINE)]

    def contains(self, text):
        """Whether a section that is loaded contains the text, with a NUL after it."""
        return any(text.encode() + b"\0" in self.content[s.offset:s.offset + s.size]
                   for s in self.sections.values()
                   if "A" in s.flags and s.name != ".bss")  # Which has no content in the file.

    def initialisers(self):
        """The names of the functions in .init_array."""
        addends = self._addends()
        functions = []
        for section in (s for s in self.sections.values() if s.name == ".init_array"):
            for at in range(0, section.size, self.pointer_size):
                offset = section.offset + at
                word = self.content[offset:offset + self.pointer_size]
                address = addends.get(section.address + at) or int.from_bytes(word, "little")
                functions.append(self._function_at(address))
        return functions

    def _addends(self):
        """Of relative relocations that have one; for the others it is in the place itself."""
        pattern = r"^\s*([0-9a-f]{8,16})\s+[0-9a-f]+\s+R_\w+_RELATIVE\s+([0-9a-f]+)$"
        return {int(place, 16): int(addend, 16) for place, addend
                in re.findall(pattern, self._readelf("--relocs"), re.MULTILINE)}

    def _function_at(self, address):
        names = [symbol.name for symbol in self.symbols
                 if symbol.type == "FUNC" and symbol.address == address]
        return names[0] if names else hex(address)


# Each check returns what is wrong, a line each.

def exports(library):
    """exports exactly what the linker map lists"""
    run = subprocess.run([ROOT / "scripts/check-exports.sh", MAP, library.path], text=True,
                         stdout=subprocess.PIPE)
    return run.stdout.splitlines() or ([] if run.returncode == 0 else ["check-exports.sh failed"])


def pixel_formats(library):
    """the 18 pixel formats are weak, read-only objects of 4 bytes"""
    names = re.findall(r"^\s*(_ZN3kc29PixFormat\S+);", MAP.read_text(), re.MULTILINE)
    wrong = [] if len(names) == 18 else [f"{MAP.name} lists {len(names)} of them"]
    for name in names:
        symbol = library.exported(name)
        if symbol is None:
            wrong.append(f"{name} is missing")
        elif (symbol.binding, symbol.type, symbol.size) != ("WEAK", "OBJECT", 4):
            wrong.append(f"{name}: {symbol.binding} {symbol.type} of {symbol.size} bytes")
        elif "W" in library.sections[symbol.section].flags:
            wrong.append(f"{name} is writable")
    return wrong


def format_names(library):
    """no pixel format's name is in it: only the stand-ins and the tool print them"""
    names = re.findall(r"^\s*_ZN3kc29PixFormat\d\d?([A-Z]\w+)E;", MAP.read_text(), re.MULTILINE)
    wrong = [] if len(names) == 18 else [f"{MAP.name} lists {len(names)} of them"]
    return wrong + [name for name in names if library.contains(name)]


def key_names(library):
    """the 20 key names are writable pointers, one after the other in the header's order"""
    names = re.findall(r"^extern const char\* (\w+);", KEYS_HEADER.read_text(), re.MULTILINE)
    wrong = [] if len(names) == 20 else [f"{KEYS_HEADER.name} declares {len(names)} of them"]
    relro_start, relro_end = library.relro()
    expected = None
    for name in names:
        symbol = library.exported(f"_ZN3kc2{len(name)}{name}E")
        if symbol is None:
            wrong.append(f"{name} is missing")
            continue
        if (symbol.binding, symbol.type, symbol.size) != ("GLOBAL", "OBJECT",
                                                                library.pointer_size):
            wrong.append(f"{name}: {symbol.binding} {symbol.type} of {symbol.size} bytes")
        if ("W" not in library.sections[symbol.section].flags
                or relro_start <= symbol.address < relro_end):
            wrong.append(f"{name} is read-only")
        if expected is not None and symbol.address != expected:
            wrong.append(f"{name} is at {symbol.address:#x}, not at {expected:#x}")
        expected = symbol.address + library.pointer_size
    return wrong


def unique_symbols(library):
    """no symbol has unique-global binding, which would pin the library in memory"""
    return [symbol.name for symbol in library.symbols if symbol.binding == "UNIQUE"]


def load_time(library):
    """exactly one own load-time initialiser, the format table's; none of iostream"""
    own = [name for name in library.initialisers() if name != "frame_dummy"]
    wrong = []
    if len(own) != 1 or not re.match(r"_GLOBAL__sub_I_.*TamraBufferLayout", own[0]):
        wrong.append("initialisers: " + (", ".join(own) or "none"))
    if "PREINIT_ARRAY" in library.dynamic:
        wrong.append("it has pre-initialisers")
    return wrong + [symbol.name for symbol in library.undefined()
                    if re.match(r"_ZNSt.*8ios_base4Init", symbol.name)]


def hardening(library):
    """full RELRO, immediate binding, no executable stack, no text relocations"""
    wrong = []
    relro_start, relro_end = library.relro()
    if relro_start == relro_end:
        wrong.append("no RELRO segment")
    for section in library.sections.values():
        if section.name in (".got", ".got.plt", ".init_array", ".data.rel.ro", ".dynamic") and not (
                relro_start <= section.address and section.address + section.size <= relro_end):
            wrong.append(f"{section.name} stays writable")
    if "BIND_NOW" not in library.dynamic:
        wrong.append("symbols are bound lazily")
    stack = re.search(r"GNU_STACK(.*)", library.segments)
    if stack is None or "E" in re.sub(r"0x\S+", "", stack[1]):
        wrong.append("the stack is executable")
    if "TEXTREL" in library.dynamic:
        wrong.append("the code has relocations")
    return wrong


def page_size(library):
    """a 64-bit library fits pages of 16 KiB: each loadable segment is aligned to them"""
    if library.pointer_size != 8:
        return []
    wrong = [] if library.alignments() else ["no loadable segment"]
    wrong += [f"a segment is aligned to {alignment}" for alignment in library.alignments()
              if alignment < PAGE_SIZE]
    # The loader protects whole pages: what must stay writable may not be in one with RELRO's end.
    _, relro_end = library.relro()
    return wrong + [f"{section.name} shares a page with RELRO"
                    for section in library.sections.values()
                    if "W" in section.flags and "A" in section.flags and section.size
                    and relro_end <= section.address < -(-relro_end // PAGE_SIZE) * PAGE_SIZE]


def names_of_files(library):
    """the SONAME is libkcodec2_platform.so, and a device's library has no path in it"""
    wrong = []
    if f"Library soname: [{SONAME}]" not in library.dynamic:
        wrong.append("another SONAME, or none")
    if not library.is_of_host and re.search(r"\((RPATH|RUNPATH)\)", library.dynamic):
        wrong.append(re.search(r"\((?:RPATH|RUNPATH)\).*", library.dynamic)[0])
    return wrong


def undefined_symbols(library):
    """uses only the standard libraries, JsonCpp and the five platform names from outside"""
    wrong = []
    platform = set()
    for symbol in library.undefined():
        name = symbol.name
        matching = [pattern for pattern in PLATFORM_NAMES if re.fullmatch(pattern, name)]
        platform.update(matching)
        if not (matching or re.fullmatch(STANDARD_VERSIONS, symbol.version)
                or re.fullmatch(JSONCPP_NAMES, name) or re.fullmatch(CXX_NAMES, name)
                or (not symbol.version and re.fullmatch(C_NAMES, name))
                or (library.is_of_host and re.fullmatch(HOST_NAMES, name))
                or (symbol.binding == "WEAK" and re.fullmatch(OPTIONAL_NAMES, name))):
            wrong.append(name)
    return wrong + [f"{name} is not used" for name in sorted(set(PLATFORM_NAMES) - platform)]


def exceptions(library):
    """a device's library does not throw, catch, or clean up after exceptions"""
    if library.is_of_host:
        return []
    return [symbol.name for symbol in library.undefined()
            if re.match(EXCEPTION_NAMES, symbol.name)]


CHECKS = (exports, pixel_formats, format_names, key_names, unique_symbols, load_time, hardening,
          page_size, names_of_files, undefined_symbols, exceptions)


def main():
    if len(sys.argv) != 2 or sys.argv[1].startswith("-"):
        sys.exit("usage: check-binary.py LIBRARY")
    try:
        library = Library(sys.argv[1])
    except subprocess.CalledProcessError:
        sys.exit(f"check-binary.py: {sys.argv[1]} is not a library that llvm-readelf can read")
    failed = False
    for check in CHECKS:
        wrong = check(library)
        print(f"{'FAILED' if wrong else 'ok':6} {check.__doc__}")
        for line in wrong:
            print(f"       {line}")
        failed = failed or bool(wrong)
    sys.exit(1 if failed else 0)


if __name__ == "__main__":
    main()
