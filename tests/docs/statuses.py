#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Checks that the help, the manual page and the user guide tell every exit status, and the user guide every status of --json.

    statuses.py ROOT
"""
import pathlib
import re
import sys

root = pathlib.Path(sys.argv[1])


def text(path):
    return (root / path).read_text()


codes = {number for number in re.findall(r'^\s+\w+ = (\d+),', text('standalone/cli/Commands.h'), re.M)}
codes |= set(re.findall(r'noDisplay = (\d+);', text('standalone/app/include/app/Window.h')))
help_text = text('standalone/cli/Help.cpp')
told = {
    'help': set(re.findall(r'\b(\d+) ', help_text[help_text.index('Exit status:'):])),
    'manual page': set(re.findall(r'^\.B (\d+)$', text('standalone/cli/imprinter.1'), re.M)),
    'user guide': set(re.findall(r'^\| (\d+) \|', text('docs/user-guide.md'), re.M)),
}
faults = [f'{where}: {sorted(numbers, key=int)} instead of {sorted(codes, key=int)}'
          for where, numbers in told.items() if numbers != codes]

command = text('standalone/cli/StampCommand.cpp')
names = command[command.index('const char* nameOf('):]
words = set(re.findall(r'return "(\w+)";', names[:names.index('\n}')])) - {'failed'}
guide = text('docs/user-guide.md')
listed = guide[guide.index('The status is '):]
listed = set(re.findall(r'`(\w+)`', listed[:listed.index('\n\n')]))
if words != listed:
    faults.append(f'user guide: the statuses {sorted(listed ^ words)} are in one place only')

print(*faults, sep='\n')
print(f'{len(codes)} exit statuses, {len(words)} statuses; {len(faults)} faults')
sys.exit(bool(faults) or len(codes) < 8 or len(words) < 10)
