#!/usr/bin/env python3
"""Hostile documents for the library and the tool: check-hostile.py BUILD-DIRECTORY

Puts every hostile value into every place of a complete document, cuts the document off at every byte,
flips each byte, and nests deeper than any limit. None may stop a process, hang it, or print a control
character; the tool must reject what the library rejects, with a reason.
"""

import json
import random
import re
import subprocess
import sys
import tempfile
from pathlib import Path

COMPLETE = {"Video": {
    "Features": {"on": True}, "Presets": {"rate": 60}, "NimbraModeBitrateTable": [[0, 10, 100]],
    "DolbyVision": {"profiles": [5], "max_main_tier_level": 9, "max_high_tier_level": 7},
    "KC2CodecPlugins": ["p"], "KC2PreProcessingFilters": ["f"],
    "perf-resource-values": {"encode": ["0x1", "0x2"]},
    "codecs-available": {"decoders": ["d"], "encoders": ["e"]}, "OptionalCodecs": ["o"],
    "KC2EncPostProcessingFilters": ["q"]}}

NAMES = [rb'""', rb'"\u0000"', b'"\x1b[2J\xc2\x9b"', rb'"\ud800"', b'"' + b"n" * 5000 + b'"',
         b'"\xff\xc0"', b"5", b'"Video"', b'"a": 1, "a"']
VALUES = NAMES + [
    b"null", b"true", b"0", b"-0", b"01", b"-1", b"0.5", b"1e5", b"1e308", b"1e400", b"-1e400",
    b"2147483647", b"2147483648", b"-2147483648", b"-2147483649", b"4294967296",
    b"9" * 30, b"-" + b"9" * 5000, b'"x"', b'"-0x1"', b'"-0x80000000"', b'"0x80000000"',
    b'"FFFFFFFFFFFFFFFFFF"', b"[]", b"{}", b"[null]", b"[[[]]]", b'{"": {}}', b"[1,]", b'{"a":}',
    b"tru", b"'a'", b"/**/", b"1 // c", b"/*", b"NaN", b"\x00", b"\xef\xbb\xbf1",
    b"[" * 260 + b"]" * 260]


def nested(depth, innermost):
    for opening, closing in ((b"[", b"]"), (b'{"a":', b"}")):
        yield opening * depth + innermost + closing * depth
        yield b'{"Video": ' + opening * depth + innermost + closing * depth + b"}"
        yield opening * depth


def places(value, path=()):
    """Paths to every value below the root, and to every member name (marked by True)."""
    items = value.items() if isinstance(value, dict) else enumerate(value)
    for key, child in items:
        yield path + (key,), False
        if isinstance(value, dict):
            yield path + (key,), True
        if isinstance(child, (dict, list)):
            yield from places(child, path + (key,))


def with_hole(path, is_name):
    """The complete document as text, cut in two at the place that the path names."""
    document = json.loads(json.dumps(COMPLETE))
    container = document
    for key in path[:-1]:
        container = container[key]
    if is_name:
        container["HOLE"] = container.pop(path[-1])
    else:
        container[path[-1]] = "HOLE"
    return json.dumps(document).encode().split(b'"HOLE"')


def documents():
    text = json.dumps(COMPLETE).encode()
    for path, is_name in places(COMPLETE):
        before, after = with_hole(path, is_name)
        for value in NAMES if is_name else VALUES:
            yield before + value + after
    yield from (text[:end] for end in range(len(text)))
    randomly = random.Random(1)
    for at in range(len(text)):
        yield text[:at] + bytes([text[at] ^ (1 << randomly.randrange(8))]) + text[at + 1:]
        yield text[:at] + bytes([randomly.randrange(256)]) + text[at:]
    for depth in (252, 253, 254, 255, 256, 257, 300, 999, 1000, 1001, 100000):
        for innermost in (b"", b"1", b"/**/", b"{}"):
            yield from nested(depth, innermost)
    yield from VALUES


def fail(message):
    sys.exit(f"check-hostile.py: {message}")


def library_verdicts(program, directories):
    """What the library did with each document: "accepted" or "rejected"."""
    run = subprocess.run([program], input="".join(f"{d}\n" for d in directories), text=True,
                         stdout=subprocess.PIPE, timeout=300)
    lines = run.stdout.splitlines()
    if run.returncode != 0:
        where = Path(lines[-1].split()[0]) / "video_system_specs.json"
        fail(f"{program} ended with {run.returncode} on {shown(where)}")
    return [line.split()[1] for line in lines]


def shown(document):
    text = document.read_bytes()
    return repr(text if len(text) < 600 else text[:300] + b" ... " + text[-300:])


def check_with_tool(tool, files):
    """The files that the tool calls rejected."""
    run = subprocess.run([tool, "check", *files], stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                         timeout=300)
    if run.returncode not in (0, 1):
        if len(files) > 1:  # Find the one.
            return set().union(*(check_with_tool(tool, [file]) for file in files))
        fail(f"{tool} check ended with {run.returncode} on {shown(files[0])}:\n{run.stdout!r}")
    control = re.search(rb"[\x00-\x09\x0b-\x1f\x7f]|\xc2[\x80-\x9f]", run.stdout)
    if control:
        fail(f"a control character in {run.stdout[max(0, control.start() - 200):control.end()]!r}")
    without_reason = re.search(rb".*: error: (;|\[|$).*", run.stdout, re.MULTILINE)
    if without_reason:
        fail(f"an error without a reason: {without_reason[0]!r}")
    return {Path(name.decode()) for name in
            re.findall(rb"^(.*?):\d+:\d+: error: .*the device rejects", run.stdout, re.MULTILINE)}


def main():
    with_tool = sys.argv[1:2] != ["--library"]
    arguments = sys.argv[1 if with_tool else 2:]
    if len(arguments) != 1:
        sys.exit("usage: check-hostile.py [--library] BUILD-DIRECTORY")
    build = Path(arguments[0])
    with tempfile.TemporaryDirectory(prefix="kc2-hostile-") as scratch:
        directories = []
        for number, text in enumerate(dict.fromkeys(documents())):
            directories.append(Path(scratch) / str(number))
            directories[-1].mkdir()
            (directories[-1] / "video_system_specs.json").write_bytes(text)
        verdicts = library_verdicts(build / "check_hostile", directories)
        files = [directory / "video_system_specs.json" for directory in directories]
        rejected = set()
        for start in range(0, len(files), 200):
            if with_tool:
                rejected |= check_with_tool(build / "kcodec2_spec", files[start:start + 200])
        for file, verdict in zip(files, verdicts):
            if with_tool and (file in rejected) != (verdict == "rejected"):
                fail(f"the library {verdict} this document, and the tool does not agree: {shown(file)}")
    count = verdicts.count("rejected")
    if not 0 < count < len(files):
        fail("the documents are all rejected, or all accepted")
    print(f"check-hostile.py: {len(files)} documents, {count} of them rejected")


if __name__ == "__main__":
    main()
