# SPDX-License-Identifier: MIT
"""Makes the small fonts of this folder with fontTools: python3 make_fonts.py

axis.ttf        variable weight; the letter "a" is a box, wide in the named instance Black
restricted.ttf  the same box, with licence bits that forbid embedding
"""
from fontTools.fontBuilder import FontBuilder
from fontTools.pens.ttGlyphPen import TTGlyphPen
from fontTools.ttLib.tables.TupleVariation import TupleVariation


def box(right):
    pen = TTGlyphPen(None)
    pen.moveTo((50, 0))
    pen.lineTo((50, 700))
    pen.lineTo((right, 700))
    pen.lineTo((right, 0))
    pen.closePath()
    return pen.glyph()


def start(family, post_script_name, licence):
    font = FontBuilder(1000, isTTF=True)
    font.setupGlyphOrder([".notdef", "a"])
    font.setupCharacterMap({0x61: "a"})
    font.setupGlyf({".notdef": box(200), "a": box(250)})
    font.setupHorizontalMetrics({".notdef": (600, 50), "a": (600, 50)})
    font.setupHorizontalHeader(ascent=800, descent=-200)
    font.setupNameTable({"familyName": family, "styleName": "Regular", "psName": post_script_name})
    font.setupOS2(sTypoAscender=800, sTypoDescender=-200, usWinAscent=800, usWinDescent=200, fsType=licence)
    font.setupPost()
    return font


axis = start("Test Axis", "TestAxis-Regular", 0)
axis.setupFvar(
    [("wght", 400, 400, 900, "Weight")],
    [{"location": {"wght": 400}, "stylename": "Regular"}, {"location": {"wght": 900}, "stylename": "Black"}],
)
widen = [(0, 0), (0, 0), (300, 0), (300, 0), (0, 0), (0, 0), (0, 0), (0, 0)]
axis.setupGvar({"a": [TupleVariation({"wght": (0, 1, 1)}, widen)]})
axis.save("axis.ttf")
start("Test Restricted", "TestRestricted-Regular", 2).save("restricted.ttf")
