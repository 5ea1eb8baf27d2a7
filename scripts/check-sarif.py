#!/usr/bin/env python3
"""Checks the tool's SARIF with a public validator, and that the validator finds faults.

The validator must find no errors in the reports on all documents and trees of tests/unit/check, and
must find the faults planted in a version, a region and a fix. It exits with 0 on an invalid file, so
its own report is read.

Needs npm, and kcodec2_spec built in the build directory. The validator is kept in
build/sarif/node_modules.
"""

import argparse
import copy
import json
import pathlib
import shutil
import subprocess
import sys

ROOT = pathlib.Path(__file__).resolve().parent.parent
WORK = ROOT / 'build/sarif'
PACKAGE = '@microsoft/sarif-multitool-linux'
VALIDATOR = WORK / 'node_modules' / PACKAGE / 'Sarif.Multitool'
SAMPLES = WORK / 'samples'  # A copy, which the tool may write to.

# The tool has no web page that a report could link to.
ACCEPTED = {'SARIF2005'}


def install():
    if not VALIDATOR.exists():
        WORK.mkdir(parents=True, exist_ok=True)
        subprocess.run(['npm', 'install', '--no-audit', '--no-fund', '--prefix', WORK, PACKAGE],
                       check=True, stdout=subprocess.DEVNULL, cwd=WORK)
    VALIDATOR.chmod(0o755)


def complaints(logs):
    """The validator's findings in each log, by its name, as (rule, level) pairs."""
    directory = WORK / 'logs'
    shutil.rmtree(directory, ignore_errors=True)
    directory.mkdir()
    for name, log in logs.items():
        (directory / f'{name}.sarif').write_text(json.dumps(log))
    verdict = WORK / 'verdict.json'
    verdict.unlink(missing_ok=True)
    subprocess.run([VALIDATOR, 'validate', directory / '*.sarif', '--output', verdict, '--log',
                    'ForceOverwrite'], check=False, stdout=subprocess.DEVNULL)
    run = json.loads(verdict.read_text(encoding='utf-8-sig'))['runs'][0]
    found = {name: set() for name in logs}
    for result in run['results']:
        uri = result['locations'][0]['physicalLocation']['artifactLocation']['uri']
        if result['ruleId'] not in ACCEPTED:
            found[pathlib.PurePath(uri).stem].add((result['ruleId'],
                                                   result.get('level', 'warning')))
    if not all(invocation['executionSuccessful'] for invocation in run['invocations']):
        sys.exit('check-sarif: the validator did not finish')
    return found


def report(tool, *arguments):
    result = subprocess.run([tool, 'check', '--format', 'sarif', *arguments], check=False,
                            capture_output=True, cwd=SAMPLES)
    if result.returncode not in (0, 1):
        sys.exit(f'check-sarif: the tool failed: {result.stderr.decode()}')
    return json.loads(result.stdout)


def with_fault(log, plant):
    faulty = copy.deepcopy(log)
    plant(faulty)
    return faulty


def first_with(log, key):
    return next(result for result in log['runs'][0]['results'] if key in result)


def plant_version(log):
    log['version'] = '2.2.0'


def plant_region(log):
    result = log['runs'][0]['results'][0]
    result['locations'][0]['physicalLocation']['region']['startLine'] = 0


def plant_fix(log):
    del first_with(log, 'fixes')['fixes'][0]['artifactChanges']


def main():
    parser = argparse.ArgumentParser(description=__doc__,
                                     formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument('build', nargs='?', type=pathlib.Path, default=ROOT / 'build/dev',
                        help='build directory with the tool (default: build/dev)')
    tool = parser.parse_args().build.resolve() / 'kcodec2_spec'
    install()

    shutil.rmtree(SAMPLES, ignore_errors=True)
    shutil.copytree(ROOT / 'tests/unit/check', SAMPLES)
    documents = sorted(path.name for path in SAMPLES.glob('*.json'))
    log = report(tool, *documents)
    first_with(log, 'relatedLocations')  # Without one, nothing is proved.
    trees = {tree.name: report(tool, '--rootdir', tree.name, '--property',
                               'vendor.media.target_variant=_test')
             for tree in sorted(SAMPLES.glob('load-*'))}
    plants = {plant.__name__: plant for plant in (plant_version, plant_region, plant_fix)}
    logs = {'documents': log, **trees,
            **{name: with_fault(log, plant) for name, plant in plants.items()}}
    failures = []
    for name, found in complaints(logs).items():
        expected = ', as it must: this fault was planted' if name in plants else ''
        print(f'check-sarif: {name}: ' + (f'found {sorted(found)}{expected}' if found else 'valid'))
        if name in plants and not any(level == 'error' for _, level in found):
            failures.append(f'the fault of {name} is not found')
        elif name not in plants and found:
            failures.append(f'{name} is not valid')
    for failure in failures or [f'{len(logs) - len(plants)} reports are valid, and each of '
                                f'{len(plants)} planted faults was found']:
        print(f'check-sarif: {failure}')
    return 1 if failures else 0


if __name__ == '__main__':
    sys.exit(main())
