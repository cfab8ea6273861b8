#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the string tables against each other and against the interface files.

    check-strings.py [folder of the resources]

Prints one line for each fault and exits with 1 if there is any:
a table that is no strings file, a key given twice, a key that one language lacks, an empty text, a text whose
format specifiers are not those of its key, an English text that is not its key, and a text of an interface file
that has no key. A text of an interface file that is not to be translated says so with notr.
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

QUOTED = r'"((?:[^"\\]|\\.)*)"'
ENTRY = re.compile(r'\s*' + QUOTED + r'\s*=\s*' + QUOTED + r'\s*;', re.S)
COMMENT = re.compile(r'\s*/\*.*?\*/', re.S)
SPECIFIER = re.compile(r'%(?:\d+\$)?[@a-zA-Z%]')


def read_table(path, faults):
    text = path.read_text(encoding='utf-8')
    table = {}
    at = 0
    while text[at:].strip():
        comment = COMMENT.match(text, at)
        if comment:
            at = comment.end()
            continue
        entry = ENTRY.match(text, at)
        if not entry:
            line = text.count('\n', 0, at + len(text[at:]) - len(text[at:].lstrip())) + 1
            faults.append(f'{path}:{line}: neither an entry nor a comment')
            return table
        key, value = entry.groups()
        if key in table:
            faults.append(f'{path}: "{key}" stands twice')
        if not value:
            faults.append(f'{path}: "{key}" has an empty text')
        if sorted(SPECIFIER.findall(key)) != sorted(SPECIFIER.findall(value)):
            faults.append(f'{path}: "{value}" has not the format specifiers of "{key}"')
        table[key] = value
        at = entry.end()
    return table


def texts_of_interface(path):
    root = ElementTree.parse(path).getroot()
    untranslated = {text for texts in root.iter('stringlist') if texts.get('notr') == 'true' for text in texts}
    for text in root.iter('string'):
        if text not in untranslated and text.get('notr') != 'true' and text.text:
            yield text.text


def main():
    folder = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parent)
    faults = []
    tables = {path.parent.stem: read_table(path, faults) for path in sorted(folder.glob('*.lproj/Localizable.strings'))}
    interfaces = sorted(folder.glob('*.ui'))
    english = tables.get('en', {})
    if not english or len(tables) < 2 or not interfaces:
        faults.append(f'{folder}: an English table, another one and an interface file are needed')

    for language, table in tables.items():
        faults += [f'{language}: lacks "{key}"' for key in english if key not in table]
        faults += [f'{language}: "{key}" is no English key' for key in table if key not in english]
    faults += [f'en: "{key}" reads "{text}"' for key, text in english.items() if key != text]
    for path in interfaces:
        faults += [f'{path.name}: "{text}" is no key' for text in sorted(set(texts_of_interface(path)) - set(english))]

    for fault in faults:
        print(fault)
    print(f'{len(english)} keys in {", ".join(tables)}; {len(interfaces)} interface files; {len(faults)} faults')
    return 1 if faults else 0


sys.exit(main())
