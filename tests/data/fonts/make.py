#!/usr/bin/python3
# SPDX-License-Identifier: MIT
"""Makes tiny fonts with chosen names, and a fontconfig configuration that knows no others.

    make.py tests FOLDER            the fonts of the tests
    make.py many FOLDER FAMILIES    that many families of two faces

Each letter is a box; how wide it is tells the faces apart. Needs Debian's python3-fonttools.
"""

import pathlib
import sys

from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib import newTable
from fontTools.ttLib.tables.TupleVariation import TupleVariation
from fontTools.ttLib.ttCollection import TTCollection

ENGLISH, JAPANESE, GERMAN = 0x409, 0x411, 0x407
LATIN = list(range(0x20, 0x7F)) + list(range(0xA0, 0x180)) + list(range(0x2010, 0x2028)) + [0x20AC, 0x2122]
CYRILLIC = [0x20] + list(range(0x400, 0x500))


def box(width):
    pen = TTGlyphPen(None)
    pen.moveTo((50, 0))
    for point in (50, 700), (width - 50, 700), (width - 50, 0):
        pen.lineTo(point)
    pen.closePath()
    return pen.glyph()


def build(names, characters=LATIN, width=500, symbolic=False, family_class=0, axis=None):
    """`names` maps (name id, language) to texts; `axis` is (widest box, [(style, place on the axis)])."""
    builder = FontBuilder(1000, isTTF=True)
    builder.setupGlyphOrder([".notdef", "space", "box"])
    glyphs = {character: "space" if character in (0x20, 0xA0) else "box" for character in characters}
    builder.setupCharacterMap({0xF000 + c: g for c, g in glyphs.items() if c < 0x100} if symbolic else glyphs)
    if symbolic:
        builder.font["cmap"].tables = [table for table in builder.font["cmap"].tables if table.platformID == 3]
        builder.font["cmap"].tables[0].platEncID = 0
    builder.setupGlyf({".notdef": box(500), "space": TTGlyphPen(None).glyph(), "box": box(width)})
    builder.setupHorizontalMetrics({".notdef": (500, 50), "space": (width, 0), "box": (width, 50)})
    builder.setupHorizontalHeader(ascent=800, descent=-200)
    builder.setupOS2(sTypoAscender=800, usWinAscent=800, usWinDescent=200, sFamilyClass=family_class << 8)
    builder.setupPost()
    builder.font["name"] = table = newTable("name")
    table.names = []
    for (name_id, language), text in names.items():
        table.setName(text, name_id, 3, 0 if symbolic and language == ENGLISH else 1, language)
    if axis:
        widest, instances = axis
        builder.setupFvar([("wdth", 100, 100, 200, "Width")],
                          [dict(location={"wdth": place}, stylename=style) for style, place in instances])
        deltas = [(0, 0), (0, 0), (widest - width, 0), (widest - width, 0)] + [(0, 0)] * 4
        builder.setupGvar({"box": [TupleVariation({"wdth": (0, 1, 1)}, deltas)]})
    return builder.font


def english(family, style, full, postscript):
    return {(1, ENGLISH): family, (2, ENGLISH): style, (4, ENGLISH): full, (6, ENGLISH): postscript}


def tests(folder):
    def save(name, *arguments, **options):
        build(*arguments, **options).save(folder / name)

    save("sans.ttf", english("Maker Sans", "Regular", "Maker Sans", "MakerSans"))
    save("sans-bold.ttf", english("Maker Sans", "Bold", "Maker Sans Bold", "MakerSans-Bold"), width=600)
    # Full names that do not begin with the family, or begin with it and go on without a space.
    save("serif.ttf", english("Maker Serif", "Italic", "MS Slanted", "MakerSerif-Italic"))
    save("mono.ttf", english("Maker Mono", "Bold", "Maker Monospaced Bold", "MakerMono-Bold"))
    # The full name is the family although the style has a name.
    save("book.ttf", english("Maker Book", "Book", "Maker Book", "MakerBook"))
    # Of the family's languages English, of which there is no full name; and no English at all.
    save("two-languages.ttf", {(1, JAPANESE): "作家", (4, JAPANESE): "作家 太字", (2, JAPANESE): "太字",
                               (1, ENGLISH): "Maker Two", (2, ENGLISH): "Bold", (6, ENGLISH): "MakerTwo-Bold"})
    save("japanese.ttf", {(1, JAPANESE): "製作", (4, JAPANESE): "製作 太字", (2, JAPANESE): "太字",
                          (6, ENGLISH): "MakerJapanese-Bold"})
    save("cyrillic.ttf", english("Maker Cyrillic", "Regular", "Maker Cyrillic", "MakerCyrillic"), CYRILLIC)
    save("both.ttf", english("Maker Both", "Regular", "Maker Both", "MakerBoth"), LATIN + CYRILLIC[1:])
    save("hidden.ttf", english("Maker Hidden", "Regular", "Maker Hidden", ".MakerHidden"))
    save("symbol.ttf", english("Maker Symbol", "Regular", "Maker Symbol", "MakerSymbol"), symbolic=True)
    save("signs.ttf", english("Maker Signs", "Regular", "Maker Signs", "MakerSigns"), family_class=12)

    # One PostScript name in two files, and in an instance of a variable file and a static one after it.
    save("a-twice.ttf", english("Maker Twice", "Regular", "Maker Twice", "MakerTwice"), width=510)
    save("b-twice.ttf", english("Maker Twice", "Regular", "Maker Twice", "MakerTwice"), width=520)
    save("variable.ttf", english("Maker Variable", "Regular", "Maker Variable", "MakerVariable")
         | {(25, ENGLISH): "MakerVariable"}, width=400, axis=(800, [("Wide", 200), ("Bold", 150), ("Static", 120)]))
    save("variable-bold.ttf", english("Maker Variable", "Bold", "Maker Variable Bold", "MakerVariable-Bold"))
    save("z-static.ttf", english("Maker Static", "Regular", "Maker Static", "MakerVariable_120wdth"))
    # Without a prefix for the names of instances, and with a space in the family.
    save("nameless.ttf", english("Maker Nameless", "Regular", "Maker Nameless", "MakerNameless"), width=400,
         axis=(800, [("Wide", 150), ("Extra Wide", 200)]))

    collection = TTCollection()
    collection.fonts = [build(english(f"Maker {name}", "Regular", f"Maker {name}", f"Maker{name}"), width=width)
                        for name, width in (("First", 530), ("Second", 540))]
    collection.save(folder / "collection.ttc")

    # Files that a test cuts off or takes away.
    for name in "Damaged", "Removed":
        save(f"{name.lower()}.ttf", english(f"Maker {name}", "Regular", f"Maker {name}", f"Maker{name}"))


def many(folder, families):
    plain, bold = (build(english("F", "S", "N", "P"), width=width) for width in (500, 600))
    for number in range(families):
        family = f"{'ABCDEFGHIJKLMNOPQRSTUVWXYZ'[number % 26]}{'aeiou'[number % 5]}ntiqua {number:04}"
        for font, style in (plain, "Regular"), (bold, "Bold"):
            full = family if style == "Regular" else f"{family} {style}"
            for name_id, text in (1, family), (2, style), (4, full), (6, full.replace(" ", "-")):
                font["name"].setName(text, name_id, 3, 1, ENGLISH)
            font.save(folder / f"{number:04}-{style}.ttf")


def main():
    kind, folder = sys.argv[1], pathlib.Path(sys.argv[2]).resolve()
    (folder / "fonts").mkdir(parents=True, exist_ok=True)
    if kind == "tests":
        tests(folder / "fonts")
    else:
        many(folder / "fonts", int(sys.argv[3]))
    (folder / "fonts.conf").write_text(
        '<?xml version="1.0"?><!DOCTYPE fontconfig SYSTEM "urn:fontconfig:fonts.dtd">\n<fontconfig>\n'
        f"<dir>{folder / 'fonts'}</dir>\n<cachedir>{folder / 'cache'}</cachedir>\n"
        "<config><rescan><int>0</int></rescan></config>\n</fontconfig>\n")


if __name__ == '__main__':
    main()
