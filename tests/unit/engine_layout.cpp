// SPDX-License-Identifier: MIT
#include "../support/PlainConfiguration.h"

#include <engine/Layout.h>

#include <gtest/gtest.h>

using namespace engine;
using support::fontRun;
using support::PlainConfiguration;

namespace {

struct Laid {
    FaceLibrary faces;
    Report report;
    std::shared_ptr<const Stamp> stamp;

    explicit Laid(const PlainConfiguration& configuration, const Facts& facts = {}) {
        const auto appearance = readAppearance(configuration, faces, report);
        stamp = layOut(appearance, resolveTitle(appearance, facts, report), faces, report);
    }
    std::vector<GlyphRun> runs() const {
        std::vector<GlyphRun> result;
        for (const auto& shape : stamp->shapes)
            if (const auto* run = std::get_if<GlyphRun>(&shape))
                result.push_back(*run);
        return result;
    }
    std::vector<PathShape> paths() const {
        std::vector<PathShape> result;
        for (const auto& shape : stamp->shapes)
            if (const auto* path = std::get_if<PathShape>(&shape))
                result.push_back(*path);
        return result;
    }
    std::u16string text() const {
        std::u16string result;
        for (const auto& run : runs())
            for (const auto& glyph : run.glyphs)
                result += glyph.text;
        return result;
    }
};

} // namespace

TEST(Layout, TextBeforeTheFirstFontRunIsBlackTwelvePointDefault) {
    const Laid laid(PlainConfiguration({std::u16string(u"A"), fontRun(u"DejaVuSans-Bold", 30), std::u16string(u"B")}));
    const auto runs = laid.runs();
    ASSERT_EQ(runs.size(), 2U);
    EXPECT_EQ(runs[0].face->postScriptName(), "DejaVuSans");
    EXPECT_EQ(runs[0].size, 12);
    EXPECT_EQ(runs[0].colour, Colour{});
    EXPECT_EQ(runs[1].face->postScriptName(), "DejaVuSans-Bold");
    EXPECT_EQ(runs[1].glyphs[0].y, runs[0].glyphs[0].y);
}

TEST(Layout, WithoutBorderAndFillTheBoxIsTheTexts) {
    PlainConfiguration plain({std::u16string(u"Text")});
    const Laid bare(plain);
    EXPECT_EQ(bare.runs()[0].glyphs[0].x, 0);
    plain.bordered = plain.filled = true; // style 0 paints neither
    const Laid styleless(plain);
    EXPECT_EQ(styleless.stamp->size, bare.stamp->size);
    EXPECT_TRUE(styleless.paths().empty());
}

TEST(Layout, TheFillLiesUnderTheBorderUnderTheText) {
    PlainConfiguration framed({std::u16string(u"Text")});
    framed.style = 1;
    framed.bordered = framed.filled = true;
    framed.thickness = 2;
    framed.opacity = 0.5;
    framed.areaColour = host::NSColor::colorWithSRGB(1, 0, 0, 0.5);
    const Laid laid(framed);
    ASSERT_EQ(laid.stamp->shapes.size(), 3U);
    const auto paths = laid.paths();
    EXPECT_FALSE(paths[0].stroked);
    EXPECT_EQ(paths[0].colour, (Colour{1, 0, 0, 0.25}));
    EXPECT_TRUE(paths[1].stroked);
    EXPECT_EQ(paths[1].colour, Colour{});
    EXPECT_EQ(paths[1].path.elements[0].to, (Point{1, 1})); // the line's outer edge is the box
    EXPECT_TRUE(std::holds_alternative<GlyphRun>(laid.stamp->shapes[2]));
}

TEST(Layout, AFillWithoutColourIsWhite) {
    PlainConfiguration filled({std::u16string(u"Text")});
    filled.style = 3;
    filled.filled = true;
    EXPECT_EQ(Laid(filled).paths()[0].colour, (Colour{1, 1, 1, 1}));
}

TEST(Layout, LinesAreAlignedByTheAnchor) {
    for (const int anchor : {0, 1, 2}) {
        PlainConfiguration two({std::u16string(u"iii\nWWWWWW\r\niii")});
        two.anchor = anchor;
        const Laid laid(two);
        const auto runs = laid.runs();
        ASSERT_EQ(runs.size(), 3U);
        EXPECT_GT(runs[0].glyphs[0].y, runs[1].glyphs[0].y);
        EXPECT_EQ(runs[0].glyphs[0].x, runs[2].glyphs[0].x);
        const double indent = runs[0].glyphs[0].x;
        EXPECT_EQ(runs[1].glyphs[0].x, 0);
        if (anchor == 0)
            EXPECT_EQ(indent, 0);
        else
            EXPECT_GT(indent, anchor == 1 ? 10 : 25);
    }
}

TEST(Layout, ABlankTitleIsNoStamp) {
    EXPECT_FALSE(Laid(PlainConfiguration()).stamp);
    EXPECT_FALSE(Laid(PlainConfiguration({std::u16string(u" \n"), fontRun(u"DejaVuSans", 12)})).stamp);
}

TEST(Layout, TokensOfOtherKindsStampNothing) {
    const Laid laid(PlainConfiguration({std::u16string(u"a"), std::shared_ptr<platform::NSObject>(),
                                        std::shared_ptr<host::ImprinterFont>(), std::u16string(u"b")}));
    EXPECT_EQ(laid.text(), u"ab");
}

TEST(Layout, PlaceholdersAreWholeTokensOnly) {
    Facts facts;
    facts.pageNumber = 7;
    const Laid laid(PlainConfiguration({std::u16string(u"%pageNumber%"), std::u16string(u" x%pageNumber%"),
                                        std::u16string(u"%"), std::u16string(u"%%"), std::u16string(u"%nobody%")}),
                    facts);
    EXPECT_EQ(laid.text(), u"7 x%pageNumber%%%%%nobody%");
    ASSERT_EQ(laid.report.warnings.size(), 1U);
    EXPECT_NE(laid.report.warnings.begin()->sentence().find("%nobody%"), std::string::npos);
}

TEST(Layout, ThePlaceholdersOfTheRunAreFilledIn) {
    Facts facts;
    facts.recordPageCount = 12;
    facts.recordName = u"Letter\tA";
    facts.user = u"Ada";
    facts.day = u"29.2.2024";
    facts.time = u"18:05";
    const Laid laid(
        PlainConfiguration({std::u16string(u"%recordPageCount%"), std::u16string(u"|"), std::u16string(u"%recordName%"),
                            std::u16string(u"|"), std::u16string(u"%user%"), std::u16string(u"|"),
                            std::u16string(u"%date%"), std::u16string(u"|"), std::u16string(u"%time%")}),
        facts);
    EXPECT_EQ(laid.text(), u"12|Letter A|Ada|29.2.2024|18:05");
    EXPECT_TRUE(laid.report.warnings.empty());
}

TEST(Layout, RightToLeftTextRunsFromTheRight) {
    const Laid laid(PlainConfiguration({std::u16string(u"a \u05d0\u05d1 b")}));
    EXPECT_EQ(laid.text(), u"a \u05d1\u05d0 b");
}

TEST(Layout, BracketsBetweenRightToLeftLettersAreMirrored) {
    const Laid laid(PlainConfiguration({std::u16string(u"\u05d0(\u05d1)")}));
    // Seen from the left: the bracket that closes the text, drawn as the opening one.
    EXPECT_EQ(laid.text(), u")\u05d1(\u05d0");
    const Laid plain(PlainConfiguration({std::u16string(u"()")}));
    EXPECT_EQ(laid.runs()[0].glyphs[0].glyph, plain.runs()[0].glyphs[0].glyph);
}

TEST(Layout, AMissingCharacterComesFromAnotherFaceOnItsOwn) {
    const Laid laid(PlainConfiguration({fontRun(u"NimbusSans-Regular", 12), std::u16string(u"a\u6f22b")}));
    const auto runs = laid.runs();
    ASSERT_EQ(runs.size(), 3U);
    EXPECT_EQ(runs[0].face->postScriptName(), "NimbusSans-Regular");
    EXPECT_NE(runs[1].face->postScriptName(), "NimbusSans-Regular");
    EXPECT_NE(runs[1].glyphs[0].glyph, 0U);
    EXPECT_TRUE(laid.report.warnings.empty());
}

TEST(Layout, ACharacterNoFaceHasIsDrawnAsTheMissingGlyphAndReported) {
    const Laid laid(PlainConfiguration({std::u16string(u"a\U000FFFF0b")}));
    ASSERT_TRUE(laid.stamp);
    ASSERT_EQ(laid.report.warnings.size(), 1U);
    EXPECT_NE(laid.report.warnings.begin()->sentence().find("U+FFFF0"), std::string::npos);
    ASSERT_EQ(laid.runs().size(), 3U);
    EXPECT_EQ(laid.runs()[1].glyphs[0].glyph, 0U);
}

TEST(Layout, DecorationsFollowTheFontsOwnMetricsAndJoinAcrossFaces) {
    auto font = std::make_shared<support::PlainFont>(u"NimbusSans-Regular", 100);
    font->underlined = font->struckThrough = true;
    const Laid laid(PlainConfiguration({fontRun(font), std::u16string(u"a\u6f22b")}));
    const auto paths = laid.paths();
    ASSERT_EQ(paths.size(), 2U);
    const auto face = laid.runs()[0].face;
    const double baseline = laid.runs()[0].glyphs[0].y;
    EXPECT_NEAR(paths[0].path.elements[2].to.y, baseline + face->underline().top / 10, 1e-6);
    EXPECT_LT(face->underline().top, 0);
    EXPECT_GT(face->strikethrough().top, 0);
    EXPECT_EQ(paths[0].path.elements[0].to.x, 0);
    EXPECT_NEAR(paths[0].path.elements[1].to.x, laid.stamp->size.width, 1e-6);
}

TEST(Layout, BadNumbersOfAFontRunAreMadeGood) {
    auto font = std::make_shared<support::PlainFont>(u"DejaVuSans", -5);
    font->outlined = true;
    font->stroke = -1;
    const auto run = Laid(PlainConfiguration({fontRun(font), std::u16string(u"x")})).runs()[0];
    EXPECT_EQ(run.size, 12);
    EXPECT_GT(run.strokeWidth, 0);
}

TEST(FaceLibrary, ANameIsThatOfOneFaceOnly) {
    FaceLibrary faces;
    ASSERT_TRUE(faces.faceNamed("DejaVuSans"));
    EXPECT_EQ(faces.faceNamed("DejaVuSans"), faces.faceNamed("DejaVuSans"));
    EXPECT_FALSE(faces.faceNamed("dejavusans"));
    EXPECT_FALSE(faces.faceNamed(""));
    EXPECT_FALSE(faces.faceNamed("DejaVu Sans"));
}

TEST(FaceLibrary, AMissingDefaultIsReplacedBySomeFace) {
    FaceLibrary faces("NoSuchFace");
    ASSERT_TRUE(faces.defaultFace());
    EXPECT_TRUE(faces.defaultFace()->hasCharacter(U'a'));
}
