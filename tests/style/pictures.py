#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks the pictures of the documents: each that is shown is there, with words for those who do not see it, each that is
there is made by scripts/pictures.sh, and together they are small.

    pictures.py ROOT
"""
import pathlib
import re
import sys

ROOT = pathlib.Path(sys.argv[1])
LARGEST = 1500 * 1000
faults = []
for document in [path for path in sorted(ROOT.rglob('*.md')) if 'build' not in path.relative_to(ROOT).parts]:
    for words, target in re.findall(r'!\[([^\]]*)\]\(([^)]+)\)', document.read_text(encoding='utf-8')):
        if '://' not in target and not (document.parent / target).is_file():
            faults.append(f'{document.name}: {target} is not there')
        if not words.strip():
            faults.append(f'{document.name}: {target} is shown without words')
made = set(re.findall(r'^keep \S+ \S+ (\S+)$', (ROOT / 'scripts/pictures.sh').read_text(encoding='utf-8'), re.M))
kept = {path.stem for path in (ROOT / 'docs/images').glob('*.png')}
faults += [f'docs/images/{name}.png is not made by scripts/pictures.sh' for name in sorted(kept - made)]
faults += [f'docs/images/{name}.png is missing' for name in sorted(made - kept)]
size = sum(path.stat().st_size for path in (ROOT / 'docs/images').iterdir())
if size > LARGEST:
    faults.append(f'docs/images: {size} bytes are more than {LARGEST}')
print('\n'.join(faults) or f'{len(kept)} pictures of {size} bytes in all')
sys.exit(1 if faults else 0)
