#!/usr/bin/env python3
# SPDX-License-Identifier: MIT
"""Draws the page that the pane's preview stamps: an A4 letter at 150 dots per inch, with white margins.

    make-sample-page.py [picture]

Needs Ghostscript and the base fonts with their metrics (Debian: ghostscript, fonts-urw-base35). Office, places and
records are invented. The picture is kept beside this script and is drawn again only when the letter changes.
"""
import pathlib
import re
import subprocess
import sys

METRICS = pathlib.Path('/usr/share/fonts/type1/urw-base35')
WIDTH, HEIGHT = 595.276, 841.89  # A4 in points
LEFT, RIGHT = 82, WIDTH - 82
DOTS_PER_INCH = 150

INK = (0.13, 0.13, 0.14)
GREY = (0.42, 0.42, 0.44)
ACCENT = (0.10, 0.30, 0.36)

GLYPHS = dict(zip(' .,:;-()/&%\'0123456789', (
    'space period comma colon semicolon hyphen parenleft parenright slash ampersand percent quotesingle '
    'zero one two three four five six seven eight nine').split()))
GLYPHS |= {'–': 'endash', '’': 'quoteright', '‘': 'quoteleft', '·': 'periodcentered'}


class Font:
    """Widths and kerning of one face, in thousandths of its size."""

    def __init__(self, name):
        self.name = name
        self.widths, self.kerns = {}, {}
        for line in (METRICS / f'{name}.afm').read_text(encoding='latin-1').splitlines():
            if character := re.match(r'C -?\d+ ; WX (\d+) ; N (\w+)', line):
                self.widths[character[2]] = int(character[1])
            elif pair := re.match(r'KPX (\w+) (\w+) (-?\d+)', line):
                self.kerns[pair[1], pair[2]] = int(pair[3])

    def glyphs(self, text, size, tracking=0.0):
        """Glyph names with their distance from the start of the text, and the length of the whole, in points."""
        placed, x, before = [], 0.0, None
        for character in text:
            name = GLYPHS.get(character, character)
            x += self.kerns.get((before, name), 0) * size / 1000
            placed.append((name, x))
            x += self.widths[name] * size / 1000 + tracking
            before = name
        return placed, x - (tracking if placed else 0)

    def length(self, text, size):
        return self.glyphs(text, size)[1]


ROMAN, BOLD, ITALIC = (Font(f'P052-{face}') for face in ('Roman', 'Bold', 'Italic'))
SANS, SANS_BOLD = Font('NimbusSans-Regular'), Font('NimbusSans-Bold')


class Page:
    """Collects PostScript; y runs down from the top edge."""

    def __init__(self):
        self.code = [f'<< /PageSize [{WIDTH} {HEIGHT}] >> setpagedevice']

    def text(self, x, y, text, font, size, colour=INK, align=0.0, tracking=0.0):
        """`align` 0 begins at x, 1 ends there."""
        placed, length = font.glyphs(text, size, tracking)
        x -= align * length
        self.code.append('{} {} {} setrgbcolor'.format(*colour))
        self.code.append(f'/{font.name} findfont {size} scalefont setfont')
        self.code += [f'{x + dx:.3f} {HEIGHT - y:.3f} moveto /{name} glyphshow' for name, dx in placed]

    def line(self, x1, x2, y, width=0.5, colour=GREY):
        self.code.append('{} {} {} setrgbcolor'.format(*colour))
        self.code.append(f'{width} setlinewidth {x1:.3f} {HEIGHT - y:.3f} moveto {x2:.3f} {HEIGHT - y:.3f} lineto stroke')

    def paragraph(self, y, text, font=ROMAN, size=11.2, leading=16.4):
        """Ragged right, as even as its number of lines allows; answers the baseline of the line after it."""
        words = text.split()
        longest = RIGHT - LEFT

        def broken(limit):
            lines = [words[0]]
            for word in words[1:]:
                if font.length(f'{lines[-1]} {word}', size) <= limit:
                    lines[-1] += f' {word}'
                else:
                    lines.append(word)
            return lines

        lines = broken(longest)
        limit = longest
        while limit > longest * 0.92 and len(broken(limit - 1)) == len(lines):
            limit -= 1
        for line in broken(limit):
            self.text(LEFT, y, line, font, size)
            y += leading
        return y

    def draw(self, picture):
        subprocess.run(['gs', '-q', '-dSAFER', '-dBATCH', '-dNOPAUSE', '-sDEVICE=jpeg', f'-r{DOTS_PER_INCH}',
                        '-dJPEGQ=88', '-dTextAlphaBits=4', '-dGraphicsAlphaBits=4', f'-sOutputFile={picture}', '-'],
                       input='\n'.join(self.code + ['showpage']), text=True, check=True)


def letterhead(page):
    page.text(LEFT, 92, 'LINDENMOOR', SANS_BOLD, 15, ACCENT, tracking=2.6)
    page.text(LEFT, 107, 'Records Office', ITALIC, 12.5, INK)
    for i, line in enumerate(('14 Quillgate Yard', 'Lindenmoor', 'Reading room open 9–16')):
        page.text(RIGHT, 86 + 11 * i, line, SANS, 7.6, GREY, align=1)
    page.line(LEFT, RIGHT, 119, 1.1, ACCENT)


def particulars(page, y):
    columns = ((LEFT, 'Our reference', 'LRO 2047/0318-C'), (LEFT + 128, 'Your reference', 'TR 66-B'),
               (LEFT + 226, 'Date', '18 March 2047'), (LEFT + 340, 'Sheets', '1 of 4'))
    for x, name, value in columns:
        page.text(x, y, name, SANS, 7.6, GREY)
        page.text(x, y + 13, value, ROMAN, 10.8)


def schedule(page, y):
    columns = ((LEFT, 0), (LEFT + 46, 0), (LEFT + 132, 0), (RIGHT - 62, 1), (RIGHT, 1))
    head = ('Box', 'Shelf mark', 'Contents', 'Period', 'Sheets')
    rows = (('1', 'M 12/001–040', 'Minutes of the harbour board', '2031–2036', '1,284'),
            ('2', 'M 12/041–077', 'Minutes of the harbour board', '2037–2041', '1,107'),
            ('3', 'P 03/001–019', 'Plans and elevations, bound', '2029–2044', '212'),
            ('4', 'C 40/100–168', 'Correspondence, inward', '2038–2045', '2,460'),
            ('5', 'C 41/001–052', 'Correspondence, outward', '2038–2045', '1,933'))
    page.line(LEFT, RIGHT, y - 13, 0.9, INK)
    for (x, align), text in zip(columns, head):
        page.text(x, y, text, SANS_BOLD, 7.8, INK, align)
    page.line(LEFT, RIGHT, y + 6, 0.45)
    y += 20
    for row in rows:
        for (x, align), text in zip(columns, row):
            page.text(x, y, text, ROMAN, 10, INK, align)
        y += 15
    page.line(LEFT, RIGHT, y - 9, 0.45)
    page.text(columns[2][0], y + 5, 'Total of five boxes', BOLD, 10)
    page.text(RIGHT, y + 5, '6,996', BOLD, 10, INK, 1)
    page.line(LEFT, RIGHT, y + 13, 0.9, INK)
    return y + 39


def main():
    picture = sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).with_name('Preview.jpg')
    page = Page()
    letterhead(page)
    particulars(page, 143)
    page.text(LEFT, 196, 'Transfer of records to the permanent collection', BOLD, 13)
    y = page.paragraph(222, 'To the Head of Filing,')
    y = page.paragraph(y + 6, 'The five boxes named in the schedule below reached this office on 11 March. They were '
                       'opened in the presence of two registrars, compared with the list of dispatch and found complete. '
                       'The seals were whole, and no sheet shows damage by water or light.')
    y = page.paragraph(y + 6, 'All volumes have been given a shelf mark and will be available in the reading room from '
                       '1 April. Plans larger than a desk are kept flat in the map store and should be ordered one day '
                       'ahead. Until the catalogue is printed, please quote the reference of this letter.')
    y = schedule(page, y + 20)
    y = page.paragraph(y, 'Sheets are counted as they lie, blank ones included. Two loose leaves found in box 4 could not '
                       'be placed; they are kept at the end of the last folder, in an envelope that bears the number of '
                       'this transfer.')
    y = page.paragraph(y + 6, 'Kindly return the second copy of this letter, stamped and dated, within fourteen days. '
                       'The retention period begins with the day of the stamp.')
    page.text(LEFT, y + 16, 'For the Records Office', ROMAN, 11.2)
    page.line(LEFT, LEFT + 176, y + 72, 0.6, INK)
    page.text(LEFT, y + 83, 'Registrar', SANS, 7.6, GREY)
    page.line(RIGHT - 176, RIGHT, y + 72, 0.6, INK)
    page.text(RIGHT - 176, y + 83, 'Received on', SANS, 7.6, GREY)
    page.draw(picture)


main()
