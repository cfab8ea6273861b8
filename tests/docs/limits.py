#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the numbers of docs/limits.md with those in the sources.

    limits.py ROOT
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])

# The beginning of a row, and the sources that hold its numbers in their order: a file, and what stands around a number.
PANE = 'resources/ImprinterPrefPane.ui'
FIELD = r'[\s\S]{0,400}?<property name="max(?:imum)?Length"[^>]*>\s*<number>(\d+)</number>'
FORMAT = 'standalone/store/Format.h'
SOURCES = {
    'a title in the window': [(PANE, r'<string>Title</string>' + FIELD)],
    'tokens of one title': [(FORMAT, r"mostTitleTokens = ([\d']+)")],
    'a list of pages in the window': [(PANE, r'<string>Page numbers</string>' + FIELD)],
    'offset and rotation': [(PANE, r'<double>-(1000000)\.0+</double>'), (PANE, r'<double>(1000000)\.0+</double>')],
    'sizes, thicknesses': [(PANE, r'<double>(999)\.0+</double>')],
    'a picture, or a page': [('standalone/engine/include/engine/Outcome.h', r"kLargestPicture = ([\d']+)")],
    'the file of configurations': [
        ('standalone/store/include/store/Store.h', r'largestFile = std::uintmax_t\{(\d+)\} << 20'),
        (FORMAT, r"mostConfigurations = ([\d']+)"), (FORMAT, r"mostMembers = ([\d']+)")],
    '`--jobs`': [('standalone/cli/StampCommand.cpp', r'mostJobs = (\d+)')],
    'a string table': [('platform/common/Foundation/NSBundle.cpp', r'largestFile = (\d+) << 20')],
    'a list dragged': [('platform/common/Foundation/BinaryPropertyList.cpp', r'largest = std::size_t\((\d+)\) << 20')],
}


def plain(number):
    return re.sub(r"[',]", '', number)


faults = []
rows = [line.split('|')[1:3] for line in (root / 'docs/limits.md').read_text().splitlines() if line.startswith('| ')]
for begins, sources in SOURCES.items():
    row = [told for name, told in rows if name.strip().startswith(begins)]
    if len(row) != 1:
        faults.append(f'"{begins}" has {len(row)} rows')
        continue
    told = [plain(number) for number in re.findall(r'\d[\d,]*', row[0])]
    for (file, pattern), number in zip(sources, told + [None] * len(sources)):
        found = re.search(pattern, (root / file).read_text())
        if not found:
            faults.append(f'{file} has no {pattern}')
        elif plain(found[1]) != number:
            faults.append(f'"{begins}": {number} is told, {file} has {found[1]}')

print(*faults, sep='\n')
print(f'{len(SOURCES)} rows; {len(faults)} faults')
sys.exit(bool(faults))
