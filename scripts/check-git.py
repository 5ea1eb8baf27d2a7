#!/usr/bin/env python3
"""Checks what this repository has for repositories with documents: check-git.py [TOOL]

TOOL is kcodec2_spec of a host build (default: build/dev/kcodec2_spec). In scratch repositories, with the
lines that docs/git.md and docs/diff.md show:
- the hooks stop a commit of a broken document, of a misspelt file in a device tree, and of a document
  that one of them fixes;
- git diff and git difftool show what changes, with the chip of git's path;
- the commands of the CI job write SARIF and a comment;
- the table of diff --format markdown is the same after it is rendered, with hostile names in it.

Needs pre-commit, cmark-gfm and PyYAML of Debian. Takes some seconds.
"""

import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from html.parser import HTMLParser
from pathlib import Path

import yaml

ROOT = Path(__file__).resolve().parent.parent
TOOL = (Path(sys.argv[1]) if len(sys.argv) > 1 else ROOT / 'build/dev/kcodec2_spec').resolve()
NAME = 'video_system_specs.json'
HOOKS = '.pre-commit-hooks.yaml'

wrong = []


def expect(is_right, what, output=''):
    if not is_right:
        wrong.append(f'{what}\n{output}')


class Repository:
    """A scratch repository, with the tool in the PATH and no configuration but its own."""

    def __init__(self, scratch, name):
        self.path = scratch / name
        self.path.mkdir()
        programs = scratch / 'bin'
        programs.mkdir(exist_ok=True)
        if not (programs / 'kcodec2_spec').exists():
            (programs / 'kcodec2_spec').symlink_to(TOOL)
        self.environment = {
            'PATH': f'{programs}:{os.environ["PATH"]}', 'HOME': str(scratch), 'LC_ALL': 'C.UTF-8',
            'GIT_CONFIG_GLOBAL': '/dev/null', 'GIT_CONFIG_NOSYSTEM': '1', 'GIT_PAGER': 'cat',
            'GIT_AUTHOR_NAME': 'a', 'GIT_AUTHOR_EMAIL': 'a@b', 'GIT_COMMITTER_NAME': 'a',
            'GIT_COMMITTER_EMAIL': 'a@b', 'PRE_COMMIT_HOME': str(scratch / 'pre-commit'),
        }
        self.git('init -q')

    def run(self, command, **more):
        return subprocess.run(['bash', '-eo', 'pipefail', '-c', command], cwd=self.path, text=True, check=False,
                              env={**self.environment, **more}, stdin=subprocess.DEVNULL,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT)

    def git(self, arguments):
        result = self.run(f'git {arguments}')
        if result.returncode != 0:
            sys.exit(f'check-git: git {arguments}: {result.stdout}')
        return result.stdout

    def write(self, name, text):
        path = self.path / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text)


def document(presets):
    return json.dumps({'Video': {'Presets': presets, 'OptionalCodecs': ['c2.kvx.avc.decoder']}}, indent=1) + '\n'


def blocks(page, language):
    """The blocks of a page in this language."""
    return re.findall(rf'^```{language}\n(.*?)^```$', (ROOT / page).read_text(), re.DOTALL | re.MULTILINE)


# --- The hooks ------------------------------------------------------------------------------------

def check_hooks(scratch):
    hooks = Repository(scratch, 'hooks')
    shutil.copy(ROOT / HOOKS, hooks.path)
    hooks.git('add . && git commit -qm hooks')

    repository = Repository(scratch, 'documents')
    shutil.copytree(ROOT / 'examples/image', repository.path / 'device')
    repository.write('.pre-commit-config.yaml', blocks('docs/git.md', 'yaml')[0]
                     .replace('URL_OF_THIS_REPOSITORY', str(hooks.path))
                     .replace('VERSION', hooks.git('rev-parse HEAD').strip()))
    repository.git('add .')
    installed = repository.run('pre-commit install')
    expect(installed.returncode == 0, 'pre-commit install', installed.stdout)

    spec = f'device/vendor/etc/media/{NAME}'
    good = (repository.path / spec).read_text()

    def commit(what, stopping, expected):
        """Commits everything. `stopping` are the hooks that must stop it; no other one may."""
        repository.git('add -A')
        result = repository.run(f'git commit -m "{what}"')
        failed = re.findall(r'Failed\n- hook id: (\S+)', result.stdout)
        expect((result.returncode != 0) == bool(stopping) and failed == stopping and expected in result.stdout,
               f'a commit of {what}: stopped by {failed or "no hook"}', result.stdout)

    commit('the example', [], 'Passed')
    everything = ['kcodec2-fix', 'kcodec2-check', 'kcodec2-check-tree']
    repository.write(spec, good.replace('"Video"', 'Video'))
    commit('a broken document', everything, '[syntax]')
    repository.write(spec, good)
    repository.write(f'device/odm/etc/media_x/{NAME[:-6]}.json', document({}))
    commit('a misspelt file', ['kcodec2-check-tree'], '[document-unselectable]')
    shutil.rmtree(repository.path / 'device/odm/etc/media_x')
    repository.write('other.json', '{')
    commit('a broken file that is no document', [], 'Passed')
    better = good.replace('60', '61')
    repository.write(spec, better.replace('},', '}', 1))
    commit('a document without a comma', ['kcodec2-fix'], 'files were modified by this hook')
    expect((repository.path / spec).read_text() == better, 'the hook fixes the document')
    commit('what the hook has fixed', [], 'Passed')


# --- git diff and git difftool --------------------------------------------------------------------

def check_diff(scratch):
    repository = Repository(scratch, 'changes')
    page = (ROOT / 'docs/diff.md').read_text()
    lines = re.findall(r'^    (git config .*)$', page, re.MULTILINE)
    expect(len(lines) == 2, 'docs/diff.md has two lines of configuration')
    for line in lines:
        repository.git(line.removeprefix('git '))
    repository.write('.gitattributes', re.search(r'^    (\S+ diff=kcodec2)$', page, re.MULTILINE).group(1) + '\n')
    mirt = f'kestrel/odm/etc/media_mirt/{NAME}'
    orvelle = f'kestrel/odm/etc/media_orvelle/{NAME}'
    for path in (mirt, orvelle):
        repository.write(path, document({'p': 1}))
    repository.git('add . && git commit -qm one')

    for path in (mirt, orvelle):
        repository.write(path, document({'p': 2}))
    for command in ('git diff', 'git difftool --tool=kcodec2 --no-prompt'):
        result = repository.run(command)
        expect(result.returncode == 0 and result.stdout.count('  ~ p  1 -> 2  document\n') == 2 and
               all(f'{side}/{path}\n' in result.stdout for side in 'ab' for path in (mirt, orvelle)) and
               result.stdout.count('built-in document 1\n') == 2 and
               result.stdout.count('built-in document 2\n') == 2, command, result.stdout)

    repository.git('checkout -q .')
    moved = f'kestrel/vendor/etc/media_brel/{NAME}'
    repository.git(f'rm -q {orvelle}')
    (repository.path / moved).parent.mkdir(parents=True)
    repository.git(f'mv {mirt} {moved}')
    repository.write(f'new/vendor/etc/media_brel/{NAME}', document({f'q{i}': i for i in range(40)}))
    repository.write(f'new/broken/{NAME}', '{')
    repository.git('add .')
    result = repository.run('git diff --cached')
    expect(result.returncode == 0 and '  - p  1  document\n' in result.stdout and
           '  + q39  39  document\n' in result.stdout and result.stdout.count('  /dev/null\n') == 3 and
           f'A  a/{mirt}\n' in result.stdout and f'B  b/{moved}\n' in result.stdout and
           result.stdout.count('no difference in effect\n') == 1 and 'a device rejects' in result.stdout,
           'git diff of files that are new, removed, renamed and broken', result.stdout)


# --- The CI job -----------------------------------------------------------------------------------

def check_job(scratch):
    repository = Repository(scratch, 'job')
    repository.write(f'odm/etc/media_mirt/{NAME}', document({'p': 1}))
    repository.git('add . && git commit -qm base')
    base = repository.git('rev-parse HEAD').strip()
    repository.write(f'odm/etc/media_mirt/{NAME}', document({'p': 2, 'private_complexty': 1}))
    repository.git('commit -qam change')
    gh = scratch / 'bin/gh'
    gh.write_text('#!/bin/sh\necho "$@" > gh.arguments\ncat "$5" > posted.md\n')
    gh.chmod(0o755)

    steps = yaml.safe_load(blocks('docs/git.md', 'yaml')[1])['jobs']['documents']['steps']
    commands = {step['name']: step for step in steps if 'run' in step}
    check = repository.run(commands['Check']['run'])
    sarif = json.loads((repository.path / 'findings.sarif').read_text())
    names = [result['ruleId'] for result in sarif['runs'][0]['results']]
    expect(sarif['version'] == '2.1.0' and 'name-misspelt' in names, f'findings of the job: {names}', check.stdout)
    upload = next(step for step in steps if 'upload-sarif' in step.get('uses', ''))
    expect((repository.path / upload['with']['sarif_file']).exists(), 'the job uploads another file')
    comment = repository.run(commands['Comment']['run'], BASE=base, CHANGE='7',
                             GIT_EXTERNAL_DIFF=commands['Comment']['env']['GIT_EXTERNAL_DIFF'])
    posted = repository.path / 'posted.md'
    expect(comment.returncode == 0 and posted.exists() and '| Presets | `p` | 1 | 2 |' in posted.read_text() and
           'built-in document 1' in posted.read_text() and
           (repository.path / 'gh.arguments').read_text() == 'pr comment 7 --body-file comment.md\n',
           'the comment of the job', comment.stdout)


# --- Markdown -------------------------------------------------------------------------------------

class Rendered(HTMLParser):
    """The cells of the tables of a page, as text, and the elements that the page has."""

    def __init__(self, html):
        super().__init__()
        self.rows = []
        self.elements = set()
        self.is_cell = False
        self.feed(html)

    def handle_starttag(self, tag, attributes):
        self.elements.add(tag)
        if tag == 'tr':
            self.rows.append([])
        if tag in ('td', 'th'):
            self.rows[-1].append('')
            self.is_cell = True

    def handle_endtag(self, tag):
        self.is_cell = self.is_cell and tag not in ('td', 'th')

    def handle_data(self, data):
        if self.is_cell:
            self.rows[-1][-1] += data


HOSTILE = ('a|b', '|', '\\|', 'a\\', '`', 'a``b`', '``` x', '<script>alert(1)</script>', '</code></td><img src=x>',
           '&lt;&amp;', '*b* _i_ ~~s~~', '[x](http://y)', '![x](y)', '@somebody', '#1', 'www.x.org', 'a@b.org',
           'a\nb', '\n\n# h', 'a\r', '\t', ' x ', '  ', '', '\x1b[31m', '\x7f', '\u202e', '\u200b', '---', '$x$')


def shown(name):
    """The name as the tool must show it."""
    control = ''.join(c if c >= ' ' and c not in '|`\x7f\u202e\u200b' else
                      ''.join(f'\\x{byte:02X}' for byte in c.encode()) for c in name)
    inner = control[1:-1]
    ends = [c.replace(' ', '\\x20') for c in (control[:1], control[-1:])]
    return '(empty)' if not name else ends[0] if len(control) == 1 else ends[0] + inner + ends[1]


def rendered(markdown):
    html = subprocess.run(['cmark-gfm', '--unsafe', '-e', 'table', '-e', 'strikethrough', '-e', 'autolink', '-e',
                           'tagfilter'], input=markdown, text=True, capture_output=True, check=True).stdout
    return Rendered(html)


def problem_in(markdown, expected):
    """What is wrong with the rendered table; None when nothing is. `expected` are (section, name)."""
    page = rendered(markdown)
    if page.elements - {'p', 'strong', 'ul', 'li', 'code', 'table', 'thead', 'tbody', 'tr', 'th', 'td'}:
        return f'elements of a name: {page.elements}'
    if re.search(r'[\x00-\x09\x0b-\x1f\x7f\u202e\u200b]', markdown):
        return 'a control character'
    rows = [row for row in page.rows if row[0] != 'Section']
    if any(len(row) != 6 for row in rows):
        return f'not six cells: {[row for row in rows if len(row) != 6]}'
    found = sorted((row[0], row[1]) for row in rows)
    return None if found == sorted(expected) else f'other names: {sorted(set(found) ^ set(expected))}'


def check_markdown(scratch):
    settings = [{'name': 'private_x', 'section': 'Presets', 'type': 'integer', 'meaning': 'a|b `c` <b>d</b>\n\x1b @e'}]
    (scratch / 'settings.json').write_text(json.dumps({'settings': settings}))
    (scratch / 'before.json').write_text('{}')
    (scratch / 'after.json').write_text(json.dumps({'Video': {
        'Presets': {**{name: 1 for name in HOSTILE}, 'private_x': 1}, 'KC2CodecPlugins': HOSTILE,
        'Features': {name: False for name in HOSTILE}, 'OptionalCodecs': HOSTILE}}))
    result = subprocess.run([TOOL, 'diff', '--format', 'markdown', '--settings', 'settings.json', 'before.json',
                             'after.json'], text=True, capture_output=True, check=False, cwd=scratch)
    expect(result.returncode == 1, 'diff --format markdown', result.stderr)
    expected = [(section, shown(name)) for section in
                ('Presets', 'Codec plug-ins', 'Features', 'Codec components') for name in HOSTILE]
    expected.append(('Presets', 'private_x'))
    problem = problem_in(result.stdout, expected)
    expect(problem is None, f'the rendered table: {problem}', result.stdout)
    cells = [row[5] for row in rendered(result.stdout).rows if row[1] == 'private_x']
    expect(cells == ['a|b `c` <b>d</b>\\x0A\\x1B @e'], f'the meaning of a setting is rendered as {cells}')
    for planted, replacement in (('\\x7C', '|'), ('\\x60', '`'), ('`<script>', '<script>'), ('\\x0A', '\n'),
                                 ('\\x1B', '\x1b')):
        faulty = result.stdout.replace(planted, replacement)
        expect(problem_in(faulty, expected), f'planted, and not noticed: {replacement!r} for {planted!r}')


def main():
    with tempfile.TemporaryDirectory() as directory:
        scratch = Path(directory)
        for check in (check_hooks, check_diff, check_job, check_markdown):
            check(scratch)
    for line in wrong:
        print(f'check-git: {line}', file=sys.stderr)
    if not wrong:
        print('check-git: hooks, git diff, git difftool, the CI job and the Markdown table are as the pages say')
    sys.exit(1 if wrong else 0)


main()
