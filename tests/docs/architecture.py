#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Compares the folders and targets that docs/architecture.md lists with those of the tree.

    architecture.py ROOT
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
faults = []

listed = {}
for line in (root / 'docs/architecture.md').read_text().splitlines():
    row = re.match(r'\|([^|]*/`) \|([^|]*)\|', line)
    if row:
        folders = re.findall(r'`([^`]+)/`', row[1])
        for folder in folders:
            listed[folder] = set(re.findall(r'`([^`]+)`', row[2]))

# What is no folder of the sources: what a build or an editor leaves.
passing = {'build', 'out'}
there = {path.name for path in root.iterdir() if path.is_dir() and path.name[0] != '.' and path.name not in passing}
there.remove('standalone')
there |= {'standalone/' + path.name for path in (root / 'standalone').iterdir() if path.is_dir()}
for folder in sorted(there - set(listed)):
    faults.append(f'{folder}/ is not listed')
for folder in sorted(set(listed) - there):
    faults.append(f'{folder}/ is listed and not there')

TARGET = re.compile(r'^\s*add_(?:library|executable|custom_target)\((\w+)', re.M)
for folder, targets in sorted(listed.items()):
    if folder in ('tests', 'fuzzing', 'benches', 'examples', 'cmake') or folder not in there:
        continue
    defined = set()
    for file in (root / folder).rglob('CMakeLists.txt'):
        defined |= set(TARGET.findall(file.read_text()))
    for target in sorted(defined - targets):
        faults.append(f'{folder}/: the target {target} is not listed')
    for target in sorted(targets - defined):
        faults.append(f'{folder}/: the target {target} is listed and not there')

print(*faults, sep='\n')
print(f'{len(listed)} folders; {len(faults)} faults')
sys.exit(bool(faults) or len(listed) < 10)
