#!/usr/bin/env python3
"""Counts what the library costs, beside the floor of each operation, and fails above a limit.

Runs the benchmark programs of a build directory: one under valgrind's callgrind, which counts
instructions, one that counts allocations. Prints the tables that docs/performance.md holds. The
counts repeat to a few per mille, however busy the machine is and wherever the tree lies.

Needs valgrind and binutils, and the preset "bench" built. Takes half a minute.
"""

import argparse
import os
import pathlib
import re
import subprocess
import sys
import tempfile

RATIO = 1.10  # Most that a query or a lookup may cost, as a multiple of its floor.
GET_INSTRUCTIONS = 4  # Most that Get() and getDVConfigs() may cost beside reading a pointer.
LOAD_RATIO = 1.30  # Most that a load may cost, as a multiple of the parser.

# The smallest document is above that by what a load costs before it meets the first entry. A limit
# just for it keeps it from getting worse unnoticed.
LOAD_RATIOS = {'device/vendor/etc/media/video_system_specs.json': 1.35}

# How far the cost per entry may rise from 1,000 to 100,000 entries; the maps' depth makes it rise.
LINEAR_RATIO = 1.20

WITHOUT_ALLOCATION = (
    'Get', 'isFeatureEnabled', 'isFeatureEnabled (100 entries)', 'getPresetValue',
    'getPresetValue (100 entries)', 'getNimbraModeBitRateValue', 'getDVConfigs', 'FormatMap',
    'FormatMap (no format)', 'Offset')


class Limits:
    """Collects what is above its limit."""

    def __init__(self):
        self.failures = []

    def check(self, what, value, limit):
        """Returns the limit as text, marked when `value` is above it."""
        if value <= limit:
            return f'{limit:g}'
        self.failures.append(f'{what}: {value:.3f} is above {limit:g}')
        return f'{limit:g} EXCEEDED'


def output_of(command, **options):
    result = subprocess.run(command, capture_output=True, text=True, check=False, **options)
    if result.returncode != 0:
        sys.exit(f'{" ".join(map(str, command))} failed:\n{result.stdout}{result.stderr}')
    return result.stdout


def print_table(title, columns, rows):
    print(f'\n{title}\n')
    texts = [columns] + [[str(cell) for cell in row] for row in rows]
    widths = [max(len(row[i]) for row in texts) for i in range(len(columns))]

    def line(row):
        cells = [row[0].ljust(widths[0])]
        cells += [cell.rjust(width) for cell, width in zip(row[1:], widths[1:])]
        return '| ' + ' | '.join(cells) + ' |'

    print(line(columns))
    print('|' + '|'.join(['-' * (widths[0] + 2)] + ['-' * (w + 1) + ':' for w in widths[1:]]) + '|')
    for row in texts[1:]:
        print(line(row))


def number(value):
    return f'{value:,.0f}' if value == int(value) or value >= 1000 else f'{value:,.1f}'


def count_instructions(build, scratch):
    """Instructions per run by operation name."""
    program = None
    for name in ('kcodec2_count_instructions', 'libkcodec2_floors.so',
                 'libkcodec2_hostplatform.so', 'libkcodec2_platform.so'):
        # A device build has the library that stands on the host's stand-ins beside the real one.
        source = build / 'hosted' / name
        source = source if source.exists() else build / name
        copy = scratch / name
        # Valgrind does not read every compiler's debug information.
        output_of(['objcopy', '--strip-debug', source, copy])
        program = program or copy
    dumps = scratch / 'dumps'
    dumps.mkdir()
    output_of(['valgrind', '--tool=callgrind', f'--callgrind-out-file={dumps}/out.%p', program],
              env={**os.environ, 'LD_LIBRARY_PATH': str(scratch)})
    counts = {}
    for dump in dumps.iterdir():
        text = dump.read_text()
        trigger = re.search(r'^desc: Trigger: Client Request: (.*):(\d+)$', text, re.MULTILINE)
        if trigger:
            total = int(re.search(r'^summary: (\d+)$', text, re.MULTILINE).group(1))
            counts[trigger.group(1)] = (total, int(trigger.group(2)))
    overhead = {runs: total for total, runs in (counts.pop('nothing 1'),
                                                counts.pop('nothing 1000'))}
    return {name: (total - overhead[runs]) / runs for name, (total, runs) in counts.items()}


def count_allocations(build):
    """(allocations, peak bytes) of one run by operation name."""
    counts = {}
    for line in output_of([build / 'kcodec2_count_allocations']).splitlines():
        name, allocations, peak = line.split('\t')
        counts[name] = (int(allocations), int(peak))
    allocations, peak = counts['one allocation of 1000 bytes']
    if allocations != 1 or peak < 1000:
        sys.exit('The allocation count does not count.')
    return counts


def names_with_floor(instructions, order):
    return [name for name in order if name + '/floor' in instructions]


def report_operations(instructions, allocations, order, limits):
    rows = []
    for name in names_with_floor(instructions, order):
        if name.startswith('load ') or name == 'first Get':
            continue
        cost, floor = instructions[name], instructions[name + '/floor']
        if name in ('Get', 'getDVConfigs'):
            limit = '+' + limits.check(name + ', instructions above the floor',
                                       round(cost - floor, 2), GET_INSTRUCTIONS)
        else:
            limit = limits.check(name + ', times the floor', cost / floor, RATIO)
        allocation_limit = 0 if name in WITHOUT_ALLOCATION else allocations[name + '/floor'][0]
        allocation_text = limits.check(name + ', allocations', allocations[name][0],
                                       allocation_limit)
        rows.append([name, number(cost), number(floor), f'{cost / floor:.3f}', limit,
                     allocations[name][0], allocation_text])
    print_table('Queries and formats: instructions of one run over all names or formats',
                ['operation', 'instructions', 'floor', 'ratio', 'limit', 'allocations', 'at most'],
                rows)


def report_loads(instructions, order, limits):
    rows = []
    for name in names_with_floor(instructions, order):
        if not name.startswith('load '):
            continue
        document = name[len('load '):]
        cost, parse = instructions[name], instructions[name + '/floor']
        release = instructions[name + '/parse and release']
        limit = limits.check(f'{name}, times the parse', cost / parse,
                             LOAD_RATIOS.get(document, LOAD_RATIO))
        rows.append([document, number(cost), number(parse), f'{cost / parse:.3f}', limit,
                     number(release), f'{cost / release:.3f}'])
    print_table('Loads: instructions of parseJsonData(), beside Json::Reader::parse() of the same '
                'bytes alone, and with the release of its tree',
                ['document', 'load', 'parse', 'ratio', 'limit', 'and release', 'ratio'], rows)

    cost, floor = instructions['first Get'], instructions['first Get/floor']
    print_table('The first Get(), beside reading and parsing its two files',
                ['operation', 'instructions', 'floor', 'ratio', 'limit'],
                [['first Get', number(cost), number(floor), f'{cost / floor:.3f}',
                  limits.check('first Get, times the floor', cost / floor, LOAD_RATIO)]])


def report_linearity(instructions, limits):
    sizes = sorted(int(match.group(1)) for match in
                   (re.fullmatch(r'load (\d+) entries', name) for name in instructions) if match)
    points = [(size, instructions[f'load {size} entries']) for size in sizes]
    mean_x = sum(x for x, _ in points) / len(points)
    mean_y = sum(y for _, y in points) / len(points)
    slope = (sum((x - mean_x) * (y - mean_y) for x, y in points) /
             sum((x - mean_x) ** 2 for x, _ in points))
    start = mean_y - slope * mean_x
    residual = sum((y - start - slope * x) ** 2 for x, y in points)
    r_squared = 1 - residual / sum((y - mean_y) ** 2 for _, y in points)

    print_table('Instructions per entry, by the number of entries',
                ['entries', 'load', 'parse'],
                [[f'{x:,}', number(y / x), number(instructions[f'load {x} entries/floor'] / x)]
                 for x, y in points])
    growth = (points[-1][1] / points[-1][0]) / (instructions['load 1000 entries'] / 1000)
    print(f'\nLinear fit of the load: {slope:,.0f} instructions per entry, R² = {r_squared:.6f}. '
          f'From 1,000 to {points[-1][0]:,} entries the cost per entry rises {growth:.3f} times '
          f'(limit {limits.check("load, rise of the cost per entry", growth, LINEAR_RATIO)}).')


def report_memory(allocations, order):
    rows = []
    for name in order:
        if name.startswith('load ') and name + '/floor' in allocations:
            peak, floor = allocations[name][1], allocations[name + '/floor'][1]
            rows.append([name[len('load '):], number(peak), number(floor), f'{peak / floor:.2f}',
                         allocations[name][0], allocations[name + '/floor'][0]])
    print_table('Loads: peak bytes on the heap and allocations, beside the parse',
                ['document', 'peak', 'parse', 'ratio', 'allocations', 'parse'], rows)


def report_parsers(instructions, order):
    rows = []
    for name in order:
        if name.startswith('load ') and name + '/floor' in instructions:
            document = name[len('load '):]
            parse = instructions[f'load {document}/parse and release']
            rapid = instructions['RapidJSON ' + document]
            simd = instructions['simdjson ' + document]
            rows.append([document, number(parse), number(rapid), number(simd),
                         f'{parse / rapid:.1f}', f'{parse / simd:.1f}'])
    print_table('Parsers: instructions of parse and release; RapidJSON and simdjson get the text '
                'without comments and leading zeros',
                ['document', 'JsonCpp', 'RapidJSON', 'simdjson', 'to RapidJSON', 'to simdjson'],
                rows)


def report_library(build, instructions, allocations, scratch):
    library = build / 'libkcodec2_platform.so'
    stripped = scratch / 'stripped.so'
    output_of(['objcopy', '--strip-all', library, stripped])
    relocations = output_of(['readelf', '--relocs', '--wide', library])
    kinds = re.findall(r'^[0-9a-f]+ +[0-9a-f]+ +(R_\w+)', relocations, re.MULTILINE)
    relative = sum(kind.endswith('_RELATIVE') for kind in kinds)
    rows = [['size, stripped (bytes)', number(stripped.stat().st_size)],
            ['relocations', len(kinds)],
            ['of these relative (no symbol lookup)', relative],
            ['load-time initialisers: instructions',
             number(instructions['load-time initialisers'])],
            ['load-time initialisers: allocations', allocations['load-time initialisers'][0]]]
    print_table('The library', ['', 'count'], rows)


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('build', nargs='?', type=pathlib.Path,
                        default=pathlib.Path(__file__).parent.parent / 'build/bench',
                        help='build directory with the benchmarks (default: build/bench)')
    parser.add_argument('--keep', type=pathlib.Path, metavar='DIRECTORY',
                        help="leave callgrind's dumps in DIRECTORY/dumps, for callgrind_annotate")
    arguments = parser.parse_args()
    build = arguments.build.resolve()
    if not (build / 'kcodec2_count_instructions').exists():
        sys.exit(f'{build} holds no benchmarks: configure with KC2_BUILD_BENCHMARKS=ON and build.')

    limits = Limits()
    with tempfile.TemporaryDirectory() as directory:
        scratch = pathlib.Path(directory)
        if arguments.keep:
            scratch = arguments.keep.resolve()
            scratch.mkdir(parents=True)
        instructions = count_instructions(build, scratch)
        allocations = count_allocations(build)
        order = list(allocations)
        report_operations(instructions, allocations, order, limits)
        report_loads(instructions, order, limits)
        report_linearity(instructions, limits)
        report_memory(allocations, order)
        report_parsers(instructions, order)
        report_library(build, instructions, allocations, scratch)
    print()
    for failure in limits.failures:
        print(f'check-performance: {failure}')
    if limits.failures:
        return 1
    print('check-performance: everything within its limits')
    return 0


if __name__ == '__main__':
    sys.exit(main())
