#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Runs the commands that the documentation shows.

    commands.py ROOT PROGRAM [PAGE...]     the pages below ROOT; without one, README, CONTRIBUTING and docs/*.md

    ```sh            is run as one script, which has to succeed
    ```console       each line that begins with "$ " is run; what it prints has to be what stands below it
    ```sh WORD       is not run, only its syntax is checked: WORD says what it needs (display, install, build, network)

The blocks of a page run one after the other in a folder of its own, where there are a document letter.pdf, a picture
scan.jpg, two more documents in inbox/, and the programs `imprinter` and `./run`. A block of indented lines cannot say what it
is; so there shall be none that begins with a command. Links to other files of the tree have to lead somewhere.
"""
import os
import pathlib
import re
import subprocess
import sys
import tempfile

NEEDS = {'display', 'install', 'build', 'network'}
COMMAND = re.compile(r'    (?:imprinter|\./(?:run|test|bench)|cmake|ctest|find|sudo|apt|git|source) ')
PAGES = ['README.md', 'CONTRIBUTING.md']


def document(pages):
    """A PDF document of empty pages."""
    kids = ' '.join(f'{3 + page} 0 R' for page in range(pages))
    objects = ['<</Type/Catalog/Pages 2 0 R>>', f'<</Type/Pages/Kids[{kids}]/Count {pages}>>']
    objects += ['<</Type/Page/Parent 2 0 R/MediaBox[0 0 595 842]>>'] * pages
    text, places = '%PDF-1.4\n', []
    for number, body in enumerate(objects, 1):
        places.append(len(text))
        text += f'{number} 0 obj\n{body}\nendobj\n'
    table = f'xref\n0 {len(objects) + 1}\n0000000000 65535 f \n' + ''.join(f'{place:010} 00000 n \n' for place in places)
    return f'{text}{table}trailer<</Size {len(objects) + 1}/Root 1 0 R>>\nstartxref\n{len(text)}\n%%EOF\n'


class Page:
    def __init__(self, root, program, path, folder):
        self.path, self.folder, self.faults, self.ran = path, folder, [], 0
        (folder / 'bin').mkdir()
        (folder / 'bin' / 'imprinter').symlink_to(program)
        work = folder / 'work'
        (work / 'inbox').mkdir(parents=True)
        for name, pages in (('letter.pdf', 3), ('inbox/a.pdf', 2), ('inbox/b.pdf', 1)):
            (work / name).write_text(document(pages))
        (work / 'run').write_text('#!/bin/sh\nexec imprinter "$@"\n')
        (work / 'run').chmod(0o755)
        (work / 'resources').symlink_to(root / 'resources')
        (work / 'scan.jpg').write_bytes((root / 'resources' / 'Preview.jpg').read_bytes())
        self.environment = {
            'PATH': f'{folder}/bin:{os.environ["PATH"]}', 'HOME': str(folder), 'LC_ALL': 'C.UTF-8',
            'XDG_DATA_HOME': str(folder / 'data'), 'XDG_CONFIG_HOME': str(folder / 'config'),
            'QT_QPA_PLATFORM': 'offscreen'}

    def shell(self, *arguments, text=''):
        return subprocess.run(['bash', *arguments], input=text, text=True, cwd=self.folder / 'work', env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT, timeout=120)

    def fault(self, line, sentence):
        self.faults.append(f'{self.path}:{line}: {sentence}')

    def script(self, line, text):
        self.ran += 1
        result = self.shell('-euo', 'pipefail', '-c', text)
        if result.returncode != 0:
            self.fault(line, f'ended with {result.returncode}: {result.stdout.strip()}')

    def session(self, line, lines):
        commands = []
        for text in lines:
            if text.startswith('$ '):
                commands.append((text[2:], []))
            elif commands:
                commands[-1][1].append(text)
            else:
                self.fault(line, 'begins with no command')
        for command, expected in commands:
            self.ran += 1
            said = self.shell('-c', command).stdout.splitlines()
            if said != expected:
                self.fault(line, f'"{command}" printed {said} instead of {expected}')

    def block(self, line, info, lines):
        words = info.split()
        if words[:1] == ['console'] and len(words) == 1:
            self.session(line, lines)
        elif words == ['sh']:
            self.script(line, '\n'.join(lines))
        elif words[:1] in (['sh'], ['console']):
            if set(words[1:]) - NEEDS:
                self.fault(line, f'needs what nobody knows: {info}')
            checked = self.shell('-n', text='\n'.join(lines) + '\n')
            if checked.returncode != 0:
                self.fault(line, checked.stdout.strip())

    def read(self, root):
        fence, info, block, start = None, '', [], 0
        for number, line in enumerate((root / self.path).read_text().splitlines(), 1):
            mark = re.match(r'(`{3,})(.*)$', line)
            if fence is None and mark:
                fence, info, block, start = mark[1], mark[2].strip(), [], number
            elif fence is not None and line == fence:
                self.block(start, info, block)
                fence = None
            elif fence is not None:
                block.append(line)
            else:
                if COMMAND.match(line):
                    self.fault(number, 'a command outside of a fence is not run')
                for link in re.findall(r'\]\(([^)#]+)', line):
                    target = (root / self.path).parent / link
                    if '://' not in link and not target.exists():
                        self.fault(number, f'the link to {link} leads nowhere')
        if fence is not None:
            self.fault(start, 'the fence is not closed')


def main():
    root, program = pathlib.Path(sys.argv[1]).resolve(), pathlib.Path(sys.argv[2]).resolve()
    pages = sys.argv[3:] or PAGES + sorted(str(p.relative_to(root)) for p in (root / 'docs').glob('*.md'))
    faults, ran = [], 0
    for path in pages:
        with tempfile.TemporaryDirectory() as folder:
            page = Page(root, program, path, pathlib.Path(folder))
            page.read(root)
            faults += page.faults
            ran += page.ran
    print(*faults, sep='\n')
    print(f'{len(pages)} pages, {ran} commands; {len(faults)} faults')
    return bool(faults) or (ran == 0 and not sys.argv[3:])


if __name__ == '__main__':
    sys.exit(main())
