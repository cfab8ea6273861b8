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
SIDE = 48  # 16 on the screen
BOX = '4,10 43,37'

STYLES = {
    1: [f'rectangle {BOX}'],
    2: [f'roundrectangle {BOX} 9,9'],
    3: ['ellipse 23.5,23.5 20,14 0,360'],
    4: ['rectangle 2,8 45,39', 'rectangle 10,16 37,31'],
    5: [f'stroke-dasharray 8 6 rectangle {BOX}'],
    6: ['line 4,37 43,37'],
    7: ["path 'M 4,20 L 4,10 L 14,10 M 33,10 L 43,10 L 43,20 M 43,27 L 43,37 L 33,37 M 14,37 L 4,37 L 4,27'"],
}

for tag, shapes in STYLES.items():
    drawing = ' '.join(shapes)
    subprocess.run(['convert', '-size', f'{SIDE}x{SIDE}', 'xc:none', '-fill', 'none', '-stroke', 'black',
                    '-strokewidth', '3.6', '-draw', drawing, '-strip',
                    '-define', 'png:exclude-chunks=date,time', f'PNG32:{HERE}/Border{tag}.png'], check=True)
