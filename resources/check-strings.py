#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks string tables against each other, against the interface files beside them, and against the sources.

    check-strings.py                       the tables of the pane and those of the program
    check-strings.py FOLDER [SOURCES...]   the tables of a folder, whose texts are used in these folders of sources

Prints one line for each fault and exits with 1 if there is any:
a table that is no strings file, a key given twice, a key that one language lacks or has beyond the English ones, an
empty text, a text whose format specifiers are not those of its key by order or number ("%2$@"), a marked letter that is lost or
marked twice, an English text that is not its key, a text of an interface file or of a source that has no key, and a key
that nothing uses. A text of an interface file that is not to be translated says so with notr.
"""
import pathlib
import re
import sys
import xml.etree.ElementTree as ElementTree

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUNDLES = {
    'resources': ['ImprinterPrefPane', 'platform/qt'],
    'standalone/app/resources': ['standalone/app'],
}
QUOTED = r'"((?:[^"\\]|\\.)*)"'
ENTRY = re.compile(r'\s*' + QUOTED + r'\s*=\s*' + QUOTED + r'\s*;', re.S)
COMMENT = re.compile(r'\s*/\*.*?\*/', re.S)
SPECIFIER = re.compile(r'%(?:\d+\$)?[@a-zA-Z%]')
MARKED = re.compile(r'&(.)')
LITERALS = re.compile(r'u?' + QUOTED + r'(?:\s*u?' + QUOTED + r')*')
LOOKED_UP = re.compile(r'\b(?:localized|text)\(\s*(?:QStringLiteral\(\s*)?(' + LITERALS.pattern + ')', re.S)


def specifiers(text):
    """Each with the number of what it stands for; a percent sign stands for nothing."""
    found = [specifier for specifier in SPECIFIER.findall(text) if specifier != '%%']
    return sorted((re.sub(r'\d+\$', '', specifier), int(re.sub(r'\D', '', specifier) or number))
                  for number, specifier in enumerate(found, 1))


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
        if specifiers(key) != specifiers(value):
            faults.append(f'{path}: "{value}" has not the format specifiers of "{key}"')
        if len(MARKED.findall(key)) != len(MARKED.findall(value)):
            faults.append(f'{path}: "{value}" has not as many marked letters as "{key}"')
        table[key] = value
        at = entry.end()
    return table


def texts_of_interface(path):
    root = ElementTree.parse(path).getroot()
    untranslated = {text for texts in root.iter('stringlist') if texts.get('notr') == 'true' for text in texts}
    for text in root.iter('string'):
        if text not in untranslated and text.get('notr') != 'true' and text.text:
            yield text.text


def joined(literals):
    return ''.join(re.findall(QUOTED, literals)).replace('\\"', '"')


def texts_of_sources(folders):
    """All literals, and those that are given to a look-up right where they stand."""
    literals, looked_up = set(), set()
    for folder in folders:
        for path in sorted(pathlib.Path(folder).rglob('*.cpp')):
            text = path.read_text(encoding='utf-8')
            literals |= {joined(found.group(0)) for found in LITERALS.finditer(text)}
            looked_up |= {(path.name, joined(found.group(1))) for found in LOOKED_UP.finditer(text)}
    return literals, looked_up


def check(folder, sources):
    faults = []
    tables = {path.parent.stem: read_table(path, faults) for path in sorted(folder.glob('*.lproj/Localizable.strings'))}
    interfaces = sorted(folder.glob('*.ui'))
    english = tables.get('en', {})
    if not english or len(tables) < 2 or not (interfaces or sources):
        faults.append(f'{folder}: an English table, another one and what uses them are needed')

    for language, table in tables.items():
        faults += [f'{language}: lacks "{key}"' for key in english if key not in table]
        faults += [f'{language}: "{key}" is no English key' for key in table if key not in english]
    faults += [f'en: "{key}" reads "{text}"' for key, text in english.items() if key != text]
    used = set()
    for path in interfaces:
        texts = set(texts_of_interface(path))
        used |= texts
        faults += [f'{path.name}: "{text}" is no key' for text in sorted(texts - set(english))]
    if sources:
        literals, looked_up = texts_of_sources(sources)
        used |= literals
        faults += [f'{name}: "{text}" is no key' for name, text in sorted(looked_up) if text not in english]
        faults += [f'en: nothing uses "{key}"' for key in english if key not in used]

    for fault in faults:
        print(fault)
    print(f'{len(english)} keys in {", ".join(tables)}; {len(interfaces)} interface files; {len(faults)} faults')
    return not faults


def main():
    if len(sys.argv) > 1:
        return 0 if check(pathlib.Path(sys.argv[1]), sys.argv[2:]) else 1
    whole = [check(ROOT / folder, [ROOT / source for source in sources]) for folder, sources in BUNDLES.items()]
    return 0 if all(whole) else 1


if __name__ == '__main__':
    sys.exit(main())
