#!/usr/bin/env python3
"""Runs each command line that README.md, docs/ and try.sh show: check-commands.py [TOOL]

TOOL is kcodec2_spec of a host build (default: build/dev/kcodec2_spec). Lines of kcodec2_spec, adb and
mkdir run in a scratch directory that contains the files they name; a stand-in replaces adb. Output
that README.md and docs/documents.md show must be what the tool prints. Scripts, presets and tests,
which have their own steps in scripts/test.sh, must exist. Any other line is an error. Takes two
seconds.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
PAGES = [ROOT / 'README.md', ROOT / 'CONTRIBUTING.md', *sorted((ROOT / 'docs').glob('*.md'))]
# Pages whose commands that begin with "$ " are followed by their output.
OUTPUT_PAGES = (ROOT / 'README.md', ROOT / 'docs/documents.md')
TOOL = (Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / 'build/dev/kcodec2_spec').resolve()
FIRST_WORDS = ('kcodec2_spec', 'adb', 'mkdir', 'cmake', 'ctest', 'cpack', 'c++', 'export')

# What a page shows in capitals, and what replaces it in the command that runs.
PLACES = (
    (r'/PREFIX:DIR\b', '/vendor:DIR/vendor'), (r'\bDIR\b', 'device'), (r'=NAME\b', '=_orvelle'),
    (r'--variant NAME\b', '--variant _orvelle'), (r'explain NAME\b', 'explain private_complexity'),
    (r'\bOLD\b', 'old.json'), (r'\bNEW\b', 'new.json'), (r'diff A \[B\]', 'diff old.json new.json'),
    (r'\bFILE\.\.\.', 'new.json'), (r'\[FILE\|-\]', 'logcat.txt'), (r'SHELL\b', 'bash'),
)
# Where scripts/try.sh builds the tool; README.md names it so.
TRY = 'scripts/try.sh'
TRIED_TOOL = 'build/run/kcodec2_spec'
# Another check runs its commands word for word.
PACKAGE_PAGE = 'docs/packages.md'
# The placeholders of a cross build name what only its owner has.
DEVICE_BUILD = re.compile(r'(cmake -S \. -B build/device|-DCMAKE_TOOLCHAIN_FILE=|cmake --(build|install) build/device)')

ADB = r'''#!/bin/sh
case "$1 $2" in
    "logcat -d") cat phone.txt ;;
    "shell getprop") echo _orvelle ;;
    "shell ls") ;;
    "pull "*) cp -r "device$2" "${3:-.}" ;;
    *) echo "adb: unknown: $*" >&2; exit 3 ;;
esac
'''


def shown_in(page):
    """(line number, command) of each command that the page shows, in blocks and between backticks."""
    fence = None
    is_block = False
    text = page.read_text().replace('\\\n', '  ')
    for number, line in enumerate(text.split('\n'), 1):
        if line.startswith('```'):
            fence = line[3:] if fence is None else None
            continue
        is_block = line.startswith('    ') or fence == 'sh'
        if is_block and fence in (None, 'sh'):
            command = re.sub(r'^\s*(\$ )?', '', line)
            word = command.split(' ')[0]
            if word in FIRST_WORDS or word.startswith(('scripts/', 'build/')) or fence == 'sh':
                yield number, re.sub(r'\s+#.*', '', command)
        elif fence is None:
            for command in re.findall(r'`((?:kcodec2_spec|scripts/|cmake|ctest|cpack|adb)[^`]*)`', line):
                yield number, command


def output_shown_in(page):
    """(line number, command, line of its output) of each line below a command that begins with "$ "."""
    command = None
    for number, line in enumerate(page.read_text().split('\n'), 1):
        if line.startswith('    $ '):
            command = line.removeprefix('    $ ')
        elif not line.startswith('    '):
            command = None
        elif command and line.strip() != '...':
            yield number, command, line


def shown_by_try():
    """The same for what scripts/try.sh prints, which its readers repeat."""
    for number, line in enumerate((ROOT / TRY).read_text().split('\n'), 1):
        if line.startswith('demo '):
            yield number, line.removeprefix('demo ').replace('$tool', TRIED_TOOL)


def sandbox(directory):
    (directory / 'build/bare-device').mkdir(parents=True)  # As try.sh leaves it.
    shutil.copytree(ROOT / 'examples/device', directory / 'device')
    for name in ('private_x', 'private_y'):
        document = {'Video': {'Features': {name: True}, 'codecs-available': {'decoders': ['c2.a.b.decoder']}}}
        (directory / ('old.json' if name == 'private_x' else 'new.json')).write_text(json.dumps(document))
    shutil.copy(directory / 'new.json', directory / 'video_system_specs.json')
    (directory / 'vendor-settings.json').write_text('{"settings": []}')
    for log in ('logcat.txt', 'phone.txt'):  # Commands may redirect the second into the first.
        (directory / log).write_text('11-25 10:00:00.000   400   401 E KC2TargetSpec: '
                                          "Couldn't read target-id, target-id = default is chosen.\n")
    shutil.copytree(ROOT / 'examples', directory / 'examples')
    programs = directory / 'bin'
    programs.mkdir()
    (programs / 'kcodec2_spec').symlink_to(TOOL)
    (programs / 'adb').write_text(ADB)
    (programs / 'adb').chmod(0o755)


def result_of(command, directory):
    for pattern, place in PLACES:
        command = re.sub(pattern, place, command)
    environment = {**os.environ, 'PATH': f'{directory}/bin:{os.environ["PATH"]}'}
    return subprocess.run(['bash', '-o', 'pipefail', '-c', command], cwd=directory, env=environment, text=True,
                          capture_output=True, stdin=subprocess.DEVNULL, check=False)


def run(command, directory):
    """What is wrong with a command of the tool or of adb; None when nothing is."""
    result = result_of(command, directory)
    # 1 is not a failure: there are findings, or differences.
    return None if result.returncode in (0, 1) else f'exit {result.returncode}: {result.stderr.strip()}'


def presets():
    listed = json.loads((ROOT / 'CMakePresets.json').read_text())
    return {one['name'] for one in listed['configurePresets'] if not one.get('hidden')}


def tests_named(pattern):
    files = [*(ROOT / 'tests').rglob('*.cpp'), *(ROOT / 'tests').rglob('CMakeLists.txt')]
    return any(pattern in path.read_text() for path in files)


def what_is_wrong(command, directory):
    command = command.replace(TRIED_TOOL, 'kcodec2_spec')
    word = command.split()[0]
    if word.startswith('scripts/'):
        return None if os.access(ROOT / word.rstrip('.,'), os.X_OK) else 'no such script'
    if command == 'adb' or command.startswith('kcodec2_spec: '):  # A name; a comment in a document.
        return None
    if re.fullmatch(r'kcodec2_spec( [a-z]+)?', command):  # The name of a command.
        return run(f'{command} --help', directory)
    if word in ('kcodec2_spec', 'adb', 'mkdir'):
        return run(command, directory)
    if DEVICE_BUILD.match(command) or command in ('cmake --install', 'cmake/'):
        return None
    names = re.findall(r'--preset (\S+)', command)
    if names:
        unknown = [name for name in names if name not in presets()]
        pattern = re.search(r'-[RL] (\S+)', command)
        if unknown:
            return f'no preset {unknown[0]}'
        return None if not pattern or tests_named(pattern.group(1)) else f'no test {pattern.group(1)}'
    return 'nothing runs this line'


def wrong_output(page, directory):
    """The lines of output that the page shows and the tool does not print, and how many it shows."""
    wrong = []
    count = 0
    for number, command, line in output_shown_in(page):
        count += 1
        output = result_of(command.replace(TRIED_TOOL, 'kcodec2_spec'), directory).stdout
        if line.removeprefix('    ') not in output.split('\n'):
            wrong.append(f'{page.name}:{number}: the tool does not print this line: {line.strip()}')
    return wrong, count


def main():
    packaged = {command for _, command in shown_in(ROOT / PACKAGE_PAGE)}
    count = 0
    wrong = []
    with tempfile.TemporaryDirectory() as scratch:
        directory = Path(scratch)
        sandbox(directory)
        for page in (*PAGES, ROOT / TRY):
            for number, command in shown_by_try() if page.suffix == '.sh' else shown_in(page):
                count += 1
                if command in packaged:
                    continue
                problem = what_is_wrong(command, directory)
                if problem:
                    wrong.append(f'{page.relative_to(ROOT)}:{number}: {command}: {problem}')
        shown = 0
        for page in OUTPUT_PAGES:
            wrong_lines, lines = wrong_output(page, directory)
            wrong += wrong_lines if lines else [f'{page.name} shows no output']
            shown += lines
        planted = directory / 'planted.md'
        planted.write_text('    $ kcodec2_spec --version\n    no such line\n')
        if wrong_output(planted, directory)[0] == []:
            wrong.append('planted, and not noticed: a line that is not in the output')
        for fault in ('kcodec2_spec chek DIR', 'kcodec2_spec show --rotdir DIR', 'scripts/check-nothing.sh',
                      'ctest --preset none', 'ctest --preset dev -R NoSuchTest', 'cmake --instal x'):
            if not what_is_wrong(fault, directory):
                wrong.append(f'planted, and not noticed: {fault}')
    for line in wrong:
        print(f'check-commands: {line}', file=sys.stderr)
    if not wrong and count > 50:
        print(f'check-commands: {count} command lines and {shown} lines of output are as the pages show them')
    sys.exit(1 if wrong or count <= 50 else 0)


main()
