#!/usr/bin/env python3
"""Counts the instructions of each operation and of its floor, and fails above a limit.

Prints the tables of docs/performance.md. The counts repeat to a few per mille, however busy the
machine is. Needs valgrind and binutils, and the presets "bench" and "phone" built. Takes some
minutes; with --phone it looks at the phone's library alone.

usage: check-performance.py [--phone] [DIRECTORY-FOR-DUMPS]
"""

import json
import os
import random
import re
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
LIBRARIES = ("libkcodec2_platform.so", "libkcodec2_floors.so", "libkcodec2_hostplatform.so")

# The limits, as multiples of the floor. A load's floor is the parse of the same bytes; the first
# limit whose pattern is in the document's name applies. "first Get" also reads its files.
QUERY_LIMIT = 1.10
GET_LIMIT = 4  # Instructions that Get() and getDVConfigs() may add to reading a pointer.
LOAD_LIMITS = (("defaults/", 1.25), ("device/vendor/etc/media/", 1.36), ("device/", 1.31),
               ("100000 ", 1.40), ("10000 ", 1.40), ("", 1.33))
FIRST_GET_LIMIT = 1.18
LINEAR_LIMIT = 1.20  # Rise of the cost per entry from 1,000 entries on: the maps get deeper.
LOAD_ENTRIES = 10000  # Of each document of the load that is checked.
CHECK_LOAD_LIMIT = 4.02  # `kcodec2_spec check` of a load, as a multiple of both parses.
CHECK_LIMIT = 2.5  # `kcodec2_spec check` of a large document, as a multiple of the parse.
MISSPELT = (1000, 10000)  # Names of two documents.
MISSPELT_LIMIT = 12  # `check` of the second of them, as a multiple of the first.
FILTERS = (2000, 8000)  # Lines of two logs, one for each filter.
FILTERS_LIMIT = 4.4  # `log` of the second of them, as a multiple of the first.
VARIANTS = (100, 400)  # Of the trees of many variants.
VARIANTS_LIMIT = 4.4  # The cost of the second tree, as a multiple of the first.
CHANGE_LIMIT = 4  # A change in an editor, as a multiple of the parse.
CHANGE_ENTRIES = 1000
FINDINGS = 20000
ONE_LINE_LIMIT = 1.5  # Findings in one line, beside as many on lines of their own.
FINDING_LIMIT = 1024  # Bytes that the process has on the heap, for each of them.
# Of the phone's own library: 5% above what each was when its limit was set.
PHONE_LIMITS = {
    "size, stripped (bytes)": 122300,
    "relocations": 260,
    "with a symbol lookup": 139,
    "dirty memory (bytes)": 12900,
    "heap that the store keeps (bytes)": 10920,
    "dlopen(): instructions": 249400,
    "first Get(): instructions": 865700,
}

# The sections of a generated document: which of ten entries are in each, about as in a real document,
# and the form of an entry.
SECTIONS = (
    ("Features", "{}", "01", '"private_enc_feature_%d": true'),
    ("Presets", "{}", "2345", '"private_max_supported_preset_%d": %d00'),
    ("NimbraModeBitrateTable", "[]", "6", "[%d0, %e0, 500]"),  # Row by row, without a gap.
    ("KC2CodecPlugins", "[]", "7", '"libkcodec2_plugin_%d.so"'),
    ("perf-resource-values", "{}", "8",
     '"private_perf_resource_values_%d": ["0x40800100", "0xFFF"]'),
    ("OptionalCodecs", "[]", "9", '"c2.kvx.codec_%d.decoder.low_latency"'),
)

failures = []


def limited(what, value, limit):
    """The limit as text, marked when `value` is above it."""
    text = f"{limit:,}"
    if value <= limit:
        return text
    failures.append(f"{what}: {value:.3f} is above {text}")
    return f"{text} EXCEEDED"


def run(*command, directory=None, **variables):
    result = subprocess.run(command, capture_output=True, text=True, check=False, cwd=directory,
                            env={**os.environ, **variables})
    if result.returncode != 0:
        sys.exit(f"{' '.join(map(str, command))} failed:\n{result.stdout}{result.stderr}")
    return result


def table(title, columns, rows):
    texts = [[f"{cell:,}" if isinstance(cell, int) else str(cell) for cell in row]
             for row in (columns, *rows)]
    widths = [max(map(len, column)) for column in zip(*texts)]
    texts.insert(1, ["-" * widths[0]] + ["-" * (width - 1) + ":" for width in widths[1:]])
    print(f"\n{title}\n")
    for row in texts:
        cells = [cell.rjust(width) for cell, width in zip(row, widths)]
        print("| " + " | ".join([row[0].ljust(widths[0]), *cells[1:]]) + " |")


def generated(count, only=None):
    """A document of `count` entries, over all sections or in one of them."""
    sections = []
    for name, (opening, closing), of_ten, entry in SECTIONS:
        numbers = [number for number in range(1, count + 1)
                   if only == name or (only is None and str(number)[-1] in of_ten)]
        lines = (entry.replace("%d", str(number)).replace("%e", str(number + 1))
                 for number in numbers)
        if numbers:
            sections.append(f'        "{name}": {opening}\n            '
                            + ",\n            ".join(lines) + f"\n        {closing}")
    return '{\n    "Video": {\n' + ",\n".join(sections) + "\n    }\n}\n"


def misspelt(count):
    """A document of `count` misspelt names, the same ones in each run."""
    catalogue = json.loads((ROOT / "tools/kcodec2_spec/catalogue/settings.json").read_text())
    names = {name[:at] + letter + name[at + left_out:]
             for name in (setting["name"] for setting in catalogue["settings"])
             for at in range(len(name)) for letter in "jkqvwxz" for left_out in (0, 1)}
    return json.dumps({"Video": {"Presets": {
        name: 1 for name in random.Random(1).sample(sorted(names), count)}}}, indent=0)


def write_documents(directory):
    """Returns their names, which are their paths in `directory`, in the order of the tables."""
    texts = {}
    # A variant that the example device gains must not change what is compared over time.
    examples = ("data/vendor/media/video_private_configs.json",
                "odm/etc/media_orvelle/video_system_specs.json",
                "vendor/etc/media/video_system_specs.json")
    for path in (*sorted((ROOT / "targetspec/defaults").glob("*.json")),
                 *(ROOT / "examples/device" / name for name in examples)):
        room = ROOT / ("examples" if "examples" in path.parts else "targetspec")
        texts[str(path.relative_to(room))] = path.read_text()
    for count in (10, 100, 1000, 10000, 100000):
        texts[f"{count} entries"] = generated(count)
    texts["100000 codecs"] = generated(100000, "OptionalCodecs")
    texts["100000 rows"] = generated(100000, "NimbraModeBitrateTable")
    for name, text in texts.items():
        (directory / name).parent.mkdir(parents=True, exist_ok=True)
        (directory / name).write_text(text)
    return list(texts)


def dumped_counts(directory):
    """(instructions, runs) of each of callgrind's dumps, by the name that the program gave it."""
    counts = {}
    for dump in directory.glob("out.*"):
        text = dump.read_text()
        trigger = re.search(r"^desc: Trigger: Client Request: (.*?)(?::(\d+))?$", text,
                            re.MULTILINE)
        if trigger:
            total = int(re.search(r"^summary: (\d+)$", text, re.MULTILINE)[1])
            counts[trigger[1]] = (total, int(trigger[2] or 1))
    return counts


def count_instructions(command, scratch):
    """Instructions per run by operation name."""
    run("valgrind", "--tool=callgrind", f"--callgrind-out-file={scratch}/out.%p", *command,
        directory=scratch / "documents", LD_LIBRARY_PATH=str(scratch), LD_BIND_NOW="1")
    counts = dumped_counts(scratch)
    overhead = {1: counts.pop("nothing 1")[0], 1000: counts.pop("nothing 1000")[0]}
    return {name: round((total - overhead[runs]) / runs)
            for name, (total, runs) in counts.items()}


def count_path_resolution(operation, scratch):
    """Instructions of one run that resolve paths in a mapped tree, as no device does."""
    for dump in scratch.glob("out.*"):
        if f"Client Request: {operation}:1\n" in dump.read_text():
            lines = run("callgrind_annotate", "--inclusive=yes", "--threshold=100", dump).stdout
            resolution = re.search(r"^ *([\d,]+) .*:kc2::host::hostPath\(", lines, re.MULTILINE)
            return int(resolution[1].replace(",", ""))
    sys.exit(f"{operation} has no dump.")


def count_allocations(command, scratch, build):
    """(allocations, peak bytes) of one run by operation name."""
    lines = run(*command, directory=scratch / "documents", LD_LIBRARY_PATH=str(scratch),
                LD_PRELOAD=str(build / "libkcodec2_allocations.so")).stdout.splitlines()
    counts = {name: (int(allocations), int(peak))
              for name, allocations, peak in (line.split("\t") for line in lines)}
    if counts["one allocation of 1000 bytes"][0] != 1:
        sys.exit("The allocation count does not count.")
    return counts


def report_operations(instructions, allocations):
    rows = []
    for name in allocations:
        floor = instructions.get(name + "/floor")
        if floor is None or name.startswith(("load ", "first Get")):
            continue
        cost = instructions[name]
        limit = (f"+{limited(name + ', above the floor', cost - floor, GET_LIMIT)}"
                 if name in ("Get", "getDVConfigs")
                 else limited(name, cost / floor, QUERY_LIMIT))
        count, most = allocations[name][0], allocations[name + "/floor"][0]
        rows.append([name, cost, floor, f"{cost / floor:.3f}", limit, count,
                     limited(name + ", allocations", count, most)])
    table("Queries and formats: instructions of one run over all names or formats",
          ["operation", "instructions", "floor", "ratio", "limit", "allocations", "at most"], rows)


def report_loads(names, instructions, scratch):
    rows = []
    # The one path of a load is the same for every document.
    resolution = count_path_resolution(f"load {names[0]}", scratch)
    for name in names:
        cost = instructions[f"load {name}"] - resolution
        parse = instructions[f"load {name}/floor"]
        limit = next(limit for pattern, limit in LOAD_LIMITS if pattern in name)
        release = instructions[f"parse and release {name}"]
        rows.append([name, cost, parse, f"{cost / parse:.3f}",
                     limited(f"load {name}", cost / parse, limit), release,
                     f"{cost / release:.3f}"])
    table(f"Loads: parseJsonData() without path resolution ({resolution}), beside the parse of the "
          "same bytes alone, and with its release",
          ["document", "load", "parse", "ratio", "limit", "and release", "ratio"], rows)
    resolution = count_path_resolution("first Get", scratch)
    cost, floor = instructions["first Get"] - resolution, instructions["first Get/floor"]
    table("The first Get() without path resolution, beside reading and parsing its two files",
          ["operation", "instructions", "floor", "ratio", "limit", "resolution"],
          [["first Get", cost, floor, f"{cost / floor:.3f}",
            limited("first Get", cost / floor, FIRST_GET_LIMIT), resolution]])

    growth = instructions["load 100000 entries"] / instructions["load 1000 entries"] / 100
    print(f"\nFrom 1,000 to 100,000 entries the load's cost per entry rises {growth:.3f} times "
          f"(limit {limited('rise of the cost per entry', growth, LINEAR_LIMIT)}).")


def count_tool(scratch, *arguments):
    """Instructions of the tool with these arguments; it must not find an error."""
    errors = run("valgrind", "--tool=cachegrind", "--cache-sim=no",
                 "--cachegrind-out-file=/dev/null", scratch / "kcodec2_spec", *arguments,
                 LD_LIBRARY_PATH=str(scratch)).stderr
    return int(re.search(r"I +refs: +([\d,]+)", errors)[1].replace(",", ""))


def session(text, changes):
    """What an editor sends: a document, and changes of one character each with a request after it."""
    uri = {"uri": "untitled:document"}
    start = {"line": 0, "character": 0}
    messages = [{"id": 1, "method": "initialize", "params": {}},
                {"method": "textDocument/didOpen",
                 "params": {"textDocument": {**uri, "version": 0, "text": text}}}]
    for version in range(1, changes + 1):
        change = {"range": {"start": start, "end": start}, "text": " "}
        messages.append({"method": "textDocument/didChange",
                         "params": {"textDocument": {**uri, "version": version},
                                    "contentChanges": [change]}})
        # Else the server would wait for the last change before it checks.
        messages.append({"id": version, "method": "textDocument/documentSymbol",
                         "params": {"textDocument": {"uri": "untitled:other"}}})
    messages += [{"id": 1, "method": "shutdown"}, {"method": "exit"}]
    texts = map(json.dumps, messages)
    return "".join(f"Content-Length: {len(one)}\r\n\r\n{one}" for one in texts)


def count_change(scratch):
    """Instructions of one change of a document without findings, in a running server."""
    # Each tenth entry is a row: they follow each other without a gap.
    text = re.sub(r"\[(\d+)0, \d+, 500\]",
                  lambda row: f"[{int(row[1]) // 10}, {int(row[1]) // 10 + 1}, 500]",
                  generated(CHANGE_ENTRIES).replace('"private_', '"vendor_'))
    counts = []
    for changes in (10, 60):
        result = subprocess.run(
            ("valgrind", "--tool=cachegrind", "--cache-sim=no", "--cachegrind-out-file=/dev/null",
             scratch / "kcodec2_spec", "lsp"), input=session(text, changes), capture_output=True,
            text=True, check=True, env={**os.environ, "LD_LIBRARY_PATH": str(scratch)})
        published = re.findall(r'"diagnostics":(.)(.)', result.stdout)
        if published != [("[", "]")] * changes:  # The first change arrives before a check.
            sys.exit(f"The server has found something, or not checked each change: {published}")
        counts.append(int(re.search(r"I +refs: +([\d,]+)", result.stderr)[1].replace(",", "")))
    return (counts[1] - counts[0]) // 50


def write_load(root):
    """A device whose two documents have LOAD_ENTRIES entries each, and nothing in common."""
    text = generated(LOAD_ENTRIES).replace(".low_latency", "")
    other = text.replace('"private_', '"own_').replace("plugin_", "own_").replace("codec_", "own_")
    other = re.sub(r"\d+(?=, \d+, 500\]|, 500\])", lambda bound: f"{int(bound[0]) + 10**6}", other)
    for path, document in (("vendor/etc/media/video_system_specs.json", text),
                           ("data/vendor/media/video_private_configs.json", other)):
        (root / path).parent.mkdir(parents=True)
        (root / path).write_text(document)


def write_variants(root, count):
    """A tree whose variants have equal loads, loads of their own, and no document, by turns."""
    text = (ROOT / "examples/image/odm/etc/media_orvelle/video_system_specs.json").read_text()
    for number in range(count):
        path = root / f"odm/etc/media_orvelle_{number:04}/video_system_specs.json"
        path.parent.mkdir(parents=True)
        if number % 3 == 0:
            path.symlink_to("nowhere.json")
        elif number % 3 == 1:
            path.write_text(text)
        else:
            path.write_text(text.replace('"Presets": {',
                                         f'"Presets": {{"vendor_own_{number}": {number},'))


def peak_of_check(name, scratch):
    """Bytes on the heap of the process that checks a document."""
    dump = scratch / f"massif {name}"
    run("valgrind", "--tool=massif", f"--massif-out-file={dump}",
        scratch / "kcodec2_spec", "check", scratch / "documents" / name,
        LD_LIBRARY_PATH=str(scratch))
    heap = re.findall(r"^mem_heap_B=(\d+)\nmem_heap_extra_B=(\d+)$", dump.read_text(),
                      re.MULTILINE)
    return max(int(used) + int(extra) for used, extra in heap)


class Checks:
    """What `check` costs, counted on the other cores while the benchmarks run on one."""

    LARGE = ("100000 entries", "100000 codecs", "100000 rows")
    MANY_FINDINGS = {"one line": "", "own lines": "\n"}
    OF_VARIANTS = (("check", "--all-variants"), ("report", "--output", "/dev/null"))

    def __init__(self, pool, scratch):
        for name, separator in self.MANY_FINDINGS.items():
            # A name of the same length each, and a leading zero, which is a note.
            members = (f'{separator}"private_{number:05}": 0{number % 10}'
                       for number in range(FINDINGS))
            (scratch / "documents" / name).write_text(
                f'{{"Video": {{"Presets": {{{",".join(members)}}}}}}}\n')
        self._instructions = {name: pool.submit(count_tool, scratch, "check",
                                                scratch / "documents" / name)
                              for name in (*self.LARGE, *self.MANY_FINDINGS)}
        for count in MISSPELT:
            (scratch / "documents" / f"{count} misspelt").write_text(misspelt(count))
            self._instructions[str(count)] = pool.submit(
                count_tool, scratch, "check", scratch / "documents" / f"{count} misspelt")
        for count in FILTERS:
            (scratch / f"{count} filters").write_text("".join(
                f"D/KC2TargetSpec( 1): mEncPostProcessingFilters {number:05}\n"
                for number in range(count)))
            self._instructions[f"log {count}"] = pool.submit(
                count_tool, scratch, "log", scratch / f"{count} filters")
        write_load(scratch / "load")
        self._instructions["load"] = pool.submit(count_tool, scratch, "check", "--rootdir",
                                                 scratch / "load")
        for count in VARIANTS:
            write_variants(scratch / f"variants {count}", count)
            for command in self.OF_VARIANTS:
                self._instructions[f"{' '.join(command)} {count}"] = pool.submit(
                    count_tool, scratch, *command, "--rootdir", scratch / f"variants {count}")
        self._instructions["change"] = pool.submit(count_change, scratch)
        self._peaks = [pool.submit(peak_of_check, name, scratch) for name in self.MANY_FINDINGS]

    def instructions(self, name):
        return self._instructions[name].result()

    def peak(self):
        return max(peak.result() for peak in self._peaks)


def report_check(instructions, checks):
    rows = []
    for name in checks.LARGE:
        cost = checks.instructions(name)
        parse = instructions[f"load {name}/floor"]
        rows.append([name, cost, parse, f"{cost / parse:.3f}",
                     limited(f"check {name}", cost / parse, CHECK_LIMIT)])
    # Both documents, and the store that the library merges of them.
    cost = checks.instructions("load")
    parse = 2 * instructions[f"load {LOAD_ENTRIES} entries/floor"]
    rows.append([f"a load, 2 x {LOAD_ENTRIES} entries", cost, parse, f"{cost / parse:.3f}",
                 limited("check of a load", cost / parse, CHECK_LOAD_LIMIT)])
    cost = checks.instructions("change")
    parse = instructions[f"load {CHANGE_ENTRIES} entries/floor"]
    rows.append([f"lsp: a change in {CHANGE_ENTRIES} entries", cost, parse, f"{cost / parse:.3f}",
                 limited("a change in an editor", cost / parse, CHANGE_LIMIT)])
    table("kcodec2_spec check, the whole process, beside the parse",
          ["document", "check", "parse", "ratio", "limit"], rows)


def report_variants(checks):
    rows = []
    for command in checks.OF_VARIANTS:
        name = " ".join(command)
        few, many = (checks.instructions(f"{name} {count}") for count in VARIANTS)
        rows.append([name, few, many, f"{many / few:.3f}",
                     limited(f"{name} of {VARIANTS[1]} variants", many / few, VARIANTS_LIMIT)])
    table("kcodec2_spec, the whole process, of trees with many variants",
          ["command", *(f"{count} variants" for count in VARIANTS), "ratio", "limit"], rows)


def report_findings(checks):
    one, own = (checks.instructions(name) for name in checks.MANY_FINDINGS)
    each = round(checks.peak() / FINDINGS)
    table(f"kcodec2_spec check, {FINDINGS:,} findings", ["", "value", "limit"], [
        ["in one line: instructions", one, ""],
        ["on lines of their own: instructions", own, ""],
        ["ratio", f"{one / own:.3f}", limited("findings in one line", one / own, ONE_LINE_LIMIT)],
        ["peak bytes on the heap, per finding", each,
         limited("memory of a finding", each, FINDING_LIMIT)]])


def report_growth(checks):
    rows = []
    for name, counts, prefix, limit in (
            ("check of misspelt names", MISSPELT, "", MISSPELT_LIMIT),
            ("log of filters", FILTERS, "log ", FILTERS_LIMIT)):
        few, many = (checks.instructions(f"{prefix}{count}") for count in counts)
        rows.append([name, f"{counts[0]:,}", few, f"{counts[1]:,}", many, f"{many / few:.3f}",
                     limited(name, many / few, limit)])
    table("kcodec2_spec, the whole process, with more and more of one thing",
          ["", "few", "instructions", "many", "instructions", "ratio", "limit"], rows)


def report_rest(names, instructions, allocations):
    rows = []
    for name in names:
        (count, peak), (floor_count, floor) = (allocations[f"load {name}"],
                                               allocations[f"load {name}/floor"])
        rows.append([name, peak, floor, f"{peak / floor:.2f}", count, floor_count])
    table("Loads: peak bytes on the heap and allocations, beside the parse",
          ["document", "peak", "parse", "ratio", "allocations", "parse"], rows)

    rows = []
    for name in names:
        costs = [instructions[f"{parser} {name}"]
                 for parser in ("parse and release", "RapidJSON", "simdjson")]
        rows.append([name, *costs, *(f"{costs[0] / cost:.1f}" for cost in costs[1:])])
    table("Parsers: parse and release; the last two get no comments and no leading zeros",
          ["document", "JsonCpp", "RapidJSON", "simdjson", "to RapidJSON", "to simdjson"], rows)

    table("Load-time initialisers", ["", "count"], [
        ["instructions", instructions["load-time initialisers"]],
        ["allocations", allocations["load-time initialisers"][0]]])


def write_device(root):
    """The two documents of the first Get() above."""
    for document, path in ((3, "odm/etc/media_orvelle/video_system_specs.json"),
                           (1, "data/vendor/media/video_private_configs.json")):
        (root / path).parent.mkdir(parents=True, exist_ok=True)
        text = (ROOT / f"targetspec/defaults/built_in_document_{document}.json").read_text()
        (root / path).write_text(text)


def report_phone(build, scratch):
    if not (build / "kcodec2_phone_costs").exists():
        sys.exit(f"{build} lacks a program: cmake --preset phone && cmake --build --preset phone")
    scratch.mkdir(parents=True, exist_ok=True)
    library, program = scratch / "libkcodec2_platform.so", scratch / "kcodec2_phone_costs"
    for file in (library, program):
        run("objcopy", "--strip-debug", build / file.name, file)
    run("objcopy", "--strip-all", build / library.name, scratch / "stripped.so")
    write_device(scratch / "device")
    command = (program, library, scratch / "device")
    lines = run(*command).stdout.splitlines()
    bytes_of = {name: int(count) for name, count in (line.split("\t") for line in lines)}
    run("valgrind", "--tool=callgrind", f"--callgrind-out-file={scratch}/out.%p", *command,
        LD_BIND_NOW="1")
    counts = dumped_counts(scratch)
    relocations = re.findall(r"^[0-9a-f]+ +[0-9a-f]+ +(R_\w+)",
                             run("readelf", "--relocs", "--wide", library).stdout, re.MULTILINE)
    values = (
        (scratch / "stripped.so").stat().st_size,
        len(relocations),
        sum(not kind.endswith("_RELATIVE") for kind in relocations),
        bytes_of["dirty memory"],
        bytes_of["heap of the store"],
        counts["dlopen"][0],
        counts["first Get"][0],
    )
    if not all(values):
        sys.exit(f"A figure of the phone's library is 0: {values}")
    table("The phone's library", ["", "value", "limit"],
          [[name, value, limited(name, value, limit)]
           for value, (name, limit) in zip(values, PHONE_LIMITS.items(), strict=True)])


def report_bench(build, scratch):
    if not (build / "kcodec2_bench").exists():
        sys.exit(f"{build} has no benchmarks: cmake --preset bench && cmake --build --preset bench")
    scratch.mkdir(parents=True, exist_ok=True)
    # Valgrind does not read every compiler's debug information. A device build has the library on
    # the stand-ins beside the real one.
    for file in ("kcodec2_bench", "kcodec2_spec", *LIBRARIES):
        hosted = build / "hosted" / file
        run("objcopy", "--strip-debug", hosted if hosted.exists() else build / file,
            scratch / file)
    names = write_documents(scratch / "documents")
    # As bench/Bench.h asks for: the largest document of a person first.
    first = ("defaults/built_in_document_3.json", names[0], "100 entries")
    command = (scratch / "kcodec2_bench", scratch / "device", *first,
               *(name for name in names if name not in first))
    with ThreadPoolExecutor(max(1, (os.cpu_count() or 1) - 1)) as pool:
        checks = Checks(pool, scratch)
        allocations = count_allocations(command, scratch, build)
        instructions = count_instructions(command, scratch)
    report_operations(instructions, allocations)
    report_loads(names[:-2], instructions, scratch)
    report_check(instructions, checks)
    report_variants(checks)
    report_findings(checks)
    report_growth(checks)
    report_rest(names[:-2], instructions, allocations)


def main():
    arguments = sys.argv[1:]
    is_phone_only = "--phone" in arguments
    directories = [argument for argument in arguments if argument != "--phone"]
    with tempfile.TemporaryDirectory() as directory:
        scratch = Path(directories[0] if directories else directory).resolve()
        if not is_phone_only:
            report_bench(ROOT / "build/bench", scratch)
        report_phone(ROOT / "build/phone", scratch / "phone")
    print("", *failures or ["everything within its limits"], sep="\ncheck-performance: ")
    sys.exit(1 if failures else 0)


if __name__ == "__main__":
    main()
