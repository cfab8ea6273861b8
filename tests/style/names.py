#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Fails where a name of names.txt is not declared where it belongs; usage: names.py ROOT-OF-THE-SOURCES."""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])
everywhere = [path for folder in ('ImprinterPrefPane', 'host') for path in (root / folder).rglob('*')
              if path.suffix in ('.h', '.cpp')]
missing, names = [], 0


def words(paths):
    text = '\n'.join(path.read_text() for path in paths)
    text = re.sub(r'//.*', '', text)  # a comment declares nothing
    return set(re.findall(r'\w+', text)) | {name[2:] for name in re.findall(r'\bm_\w+', text)}


declared, place = set(), ''
for line in (pathlib.Path(__file__).parent / 'names.txt').read_text().splitlines():
    if not line.strip() or line.startswith('#'):
        continue
    if line.endswith(':'):
        place = line[:-1]
        if place != 'anywhere' and not (root / place).is_file():
            missing.append(f'{place}: there is no such file')
            declared = set()
        else:
            declared = words(everywhere if place == 'anywhere' else [root / place])
        continue
    names += 1
    if line.strip() not in declared:
        missing.append(f'{place}: {line.strip()}')

print('\n'.join(missing) or f'all {names} names are there')
sys.exit(bool(missing))
