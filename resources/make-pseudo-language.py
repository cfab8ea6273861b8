#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Makes a string table in a language that nobody speaks, from an English one.

    make-pseudo-language.py ENGLISH.strings PSEUDO.strings

Every text stands between brackets, has accents and is longer by half: in a program that is set to this language, what
stays without brackets is not translated, and what lacks a bracket is cut off.
"""
import pathlib
import re
import sys

ENTRY = re.compile(r'^"((?:[^"\\]|\\.)*)" = "((?:[^"\\]|\\.)*)";$', re.M)
KEPT = re.compile(r'(%(?:\d\$)?@|\(\*[^)]*\)|\\.|&.)')  # what is filled in, patterns of file names, escapes, shortcuts
ACCENTS = str.maketrans('aceghijlnorsuwyzACEGHIJLNORSUWYZ', 'àćéğĥîĵļñöŕšüŵýžÀĆÉĞĤÎĴĻÑÖŔŠÜŴÝŽ')


def pseudo(text):
    accented = ''.join(part if i % 2 else part.translate(ACCENTS) for i, part in enumerate(KEPT.split(text)))
    longer = ' ' + 'ëm' * ((len(text) + 7) // 4)
    patterns = re.search(r' \(\*[^)]*\)$', accented)
    at = patterns.start() if patterns else len(accented)
    return f'⟦{accented[:at]}{longer}⟧{accented[at:]}'


def main():
    english, out = map(pathlib.Path, sys.argv[1:])
    out.parent.mkdir(parents=True, exist_ok=True)
    table = ENTRY.sub(lambda entry: f'"{entry[1]}" = "{pseudo(entry[2])}";', english.read_text(encoding='utf-8'))
    out.write_text(table, encoding='utf-8')


main()
