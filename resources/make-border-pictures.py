#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the small pictures of the border styles that stand in the pane's pop-up, one a style.

    make-border-pictures.py

Needs ImageMagick. A picture is what lies in its alpha channel, three times as large as it is shown; the toolkit paints
it in the colour of the text beside it. The pictures are kept beside this script.
"""
import pathlib
import subprocess

HERE = pathlib.Path(__file__).parent
WIDTH, HEIGHT = 84, 48  # 28 × 16 on the screen
BOX = '9,9 74,38'

STYLES = {
    0: [],
    1: [f'rectangle {BOX}'],
    2: [f'roundrectangle {BOX} 12,12'],
    3: ['ellipse 41.5,23.5 32.5,15.5 0,360'],
    4: ['rectangle 6,6 77,41', 'rectangle 15,15 68,32'],
    5: [f'stroke-dasharray 10 7 rectangle {BOX}'],
    6: ['line 9,38 74,38'],
    7: ['polyline 9,20 9,9 20,9', 'polyline 63,9 74,9 74,20', 'polyline 74,27 74,38 63,38',
        'polyline 20,38 9,38 9,27'],
}

for tag, shapes in STYLES.items():
    drawing = ' '.join(shapes)
    subprocess.run(['convert', '-size', f'{WIDTH}x{HEIGHT}', 'xc:none', '-fill', 'none', '-stroke', 'black',
                    '-strokewidth', '3.6', *(['-draw', drawing] if drawing else []), '-strip',
                    '-define', 'png:exclude-chunks=date,time', f'PNG32:{HERE}/Border{tag}.png'], check=True)
