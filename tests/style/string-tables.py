#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Shows that the check of the string tables finds each fault there can be.

    string-tables.py ROOT
"""
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(sys.argv[1])


def found(change):
    """The faults after `change` to a copy of the tables and of what uses them."""
    with tempfile.TemporaryDirectory() as name:
        copy = pathlib.Path(name)
        shutil.copytree(ROOT / 'standalone/app/resources', copy / 'tables')
        shutil.copytree(ROOT / 'standalone/app', copy / 'sources')
        change(copy)
        run = subprocess.run([sys.executable, ROOT / 'resources/check-strings.py', copy / 'tables', copy / 'sources'],
                             capture_output=True, text=True)
        lines = run.stdout.splitlines()[:-1]
        assert (run.returncode == 0) == (not lines), run.stdout + run.stderr
        return lines


def table(copy, language):
    return copy / 'tables' / f'{language}.lproj' / 'Localizable.strings'


def replaced(language, text, by):
    def change(copy):
        path = table(copy, language)
        whole = path.read_text(encoding='utf-8')
        assert text in whole, text
        path.write_text(whole.replace(text, by), encoding='utf-8')
    return change


def appended(language, line):
    def change(copy):
        with table(copy, language).open('a', encoding='utf-8') as file:
            file.write(line + '\n')
    return change


def everywhere(line):
    def change(copy):
        for path in (copy / 'tables').glob('*.lproj'):
            appended(path.stem, line)(copy)
    return change


def source(line):
    return lambda copy: (copy / 'sources' / 'More.cpp').write_text(line + '\n', encoding='utf-8')


EXPECTED = [
    (lambda copy: None, []),
    (replaced('fr', '"User" = "Utilisateur";\n', ''), ['fr: lacks "User"']),
    (appended('it', '"Surplus" = "Superfluo";'), ['it: "Surplus" is no English key']),
    (everywhere('"Unused" = "Unused";'), ['en: nothing uses "Unused"']),
    (source('auto label = text(u"Never " u"heard of");'), ['More.cpp: "Never heard of" is no key']),
    (replaced('es', '"Usuario"', '""'), ['"User" has an empty text']),
    (replaced('nl', '"Lettertype %@"', '"Lettertype"'), ['"Lettertype" has not the format specifiers of "Font %@"']),
    (replaced('ja', '「%1$@」にないため、「%3$@」', '「%1$@」にないため、「%1$@」'), ['has not the format specifiers of']),
    (replaced('ja', '"終了(&Q)"', '"終了"'), ['"終了" has not as many marked letters as "&Quit"']),
    (replaced('ar', '"User" =', '"User"'), ['neither an entry nor a comment']),
    (appended('de', '"User" = "Benutzerin";'), ['"User" stands twice']),
]

for change, expected in EXPECTED:
    lines = found(change)
    for text in expected:
        assert any(text in line for line in lines), f'{text} is not among {lines}'
    assert bool(lines) == bool(expected), lines
print(f'{len(EXPECTED)} cases')
