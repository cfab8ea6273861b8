// SPDX-License-Identifier: MIT
#include "Documents.h"
#include "Render.h"

#include <Foundation/NSString.h>

#include <gtest/gtest.h>

using namespace render;
using support::fontRun;

namespace {

const char kGreyCorner[] = "0.5 g 5 5 20 20 re f";
const char kPage[] = "/MediaBox [0 0 300 200]";

/// A document in a folder of its own, stamped into out.pdf beside it.
struct Stamped {
    Folder folder;
    engine::Outcome outcome;

    Stamped(const std::string& input, std::vector<std::shared_ptr<support::PlainConfiguration>> with) {
        writeFile(folder / "in.pdf", input);
        outcome = engine::stampFile(job(in(), out(), std::move(with)));
        EXPECT_TRUE(outcome) << outcome.sentence;
    }
    std::filesystem::path in() const { return folder / "in.pdf"; }
    std::filesystem::path out() const { return folder / "out.pdf"; }

    /// What pdftotext finds on a page, without the line ends at the end.
    std::string text(int page = 1) const {
        const auto number = std::to_string(page);
        auto found = run("pdftotext -q -enc UTF-8 -f " + number + " -l " + number + " " + quoted(out()) + " -").output;
        while (!found.empty() && (found.back() == '\n' || found.back() == '\f'))
            found.pop_back();
        return found;
    }
    /// What qpdf complains of.
    std::string complaints() const {
        const auto check = run("qpdf --check " + quoted(out()));
        return check.status == 0 ? "" : check.output;
    }
    QRect changed() const { return differingArea(shownPage(in()), shownPage(out())); }
};

} // namespace

TEST(PdfDocuments, StampedTextCanBeSearchedAndIsEmbeddedAsASubset) {
    const Stamped result(document(1, kPage, kGreyCorner), {configuration(u"Received 21 November")});
    EXPECT_EQ(result.text(), "Received 21 November");
    EXPECT_EQ(result.complaints(), "");
    const auto fonts = run("pdffonts " + quoted(result.out())).output;
    EXPECT_NE(fonts.find("+DejaVuSans"), std::string::npos) << fonts;
    EXPECT_NE(fonts.find("CID TrueType      Identity-H       yes yes yes"), std::string::npos) << fonts;
}

TEST(PdfDocuments, CompactFontsStayCompact) {
    const auto with = configuration(u"");
    with->setTitle({fontRun(u"NimbusSans-Regular", 14), std::u16string(u"Fluffy office AVATAR")});
    const Stamped result(document(1, kPage, kGreyCorner), {with});
    EXPECT_TRUE(result.outcome.warnings.empty()) << result.outcome.warnings.front().sentence();
    EXPECT_EQ(result.text(), "Fluffy office AVATAR");
    const auto fonts = run("pdffonts " + quoted(result.out())).output;
    EXPECT_NE(fonts.find("CID Type 0C       Identity-H       yes yes yes"), std::string::npos) << fonts;
    EXPECT_EQ(result.complaints(), "");
}

TEST(PdfDocuments, EveryAnchorOnEveryKindOfPageIsWhereItShouldBe) {
    // A turned, cropped page in its own unit, a page for each anchor. The stamp is a filled box with sharp edges.
    std::vector<std::shared_ptr<support::PlainConfiguration>> anchored;
    for (int anchor = 0; anchor < 9; ++anchor) {
        const auto with = configuration(u"Where");
        with->anchor = anchor;
        with->shift = {3, 5};
        with->style = 1;
        with->filled = true;
        with->areaColour = host::NSColor::colorWithSRGB(1, 0, 0, 1);
        with->pages = 4;
        with->customPages = platform::fromUtf8(std::to_string(anchor + 1));
        anchored.push_back(with);
    }
    for (const int rotate : {0, 90, 180, 270, -90, 450})
        for (const bool cropped : {false, true})
            for (const double unit : {1.0, 1.5}) {
                const std::string entries = "/MediaBox [10 20 310 220] /Rotate " + std::to_string(rotate) +
                                            (cropped ? " /CropBox [30 30 250 205]" : "") +
                                            (unit != 1 ? " /UserUnit 1.5" : "");
                const Stamped result(document(9, entries, kGreyCorner), anchored);
                const double w = (cropped ? 220 : 300) * unit;
                const double h = (cropped ? 175 : 200) * unit;
                const bool sideways = rotate % 180 != 0;
                const double width = sideways ? h : w;
                const double height = sideways ? w : h;
                // pdftoppm takes no notice of UserUnit: at this resolution a pixel is a point.
                const int unitsPerInch = static_cast<int>(72 * unit);
                const QImage before = shownPage(result.in(), 1, unitsPerInch, "-aa no -aaVector no");
                for (int anchor = 0; anchor < 9; ++anchor) {
                    SCOPED_TRACE("rotate " + std::to_string(rotate) + (cropped ? " cropped" : "") + " unit " +
                                 std::to_string(unit) + " anchor " + std::to_string(anchor));
                    const QRect area =
                        differingArea(before, shownPage(result.out(), anchor + 1, unitsPerInch, "-aa no -aaVector no"));
                    ASSERT_GT(area.width(), 20);
                    ASSERT_GT(area.width(), area.height());
                    const double left = anchor % 3 == 0   ? 18
                                        : anchor % 3 == 1 ? (width - area.width()) / 2
                                                          : width - 18 - area.width();
                    const double top = anchor / 3 == 0   ? 18
                                       : anchor / 3 == 1 ? (height - area.height()) / 2
                                                         : height - 18 - area.height();
                    EXPECT_NEAR(area.left(), left + 3, 1.6);
                    EXPECT_NEAR(area.top(), top - 5, 1.6);
                }
            }
}

TEST(PdfDocuments, ATurnedStampStandsWithItsBoundingBoxAtTheAnchor) {
    for (const double degrees : {30.0, 90.0, 180.0, 217.5, -45.0}) {
        SCOPED_TRACE(degrees);
        const auto with = configuration(u"Turned stamp");
        with->anchor = 8;
        with->degrees = degrees;
        with->style = 1;
        with->bordered = true;
        const Stamped result(document(1, kPage, kGreyCorner), {with});
        const QRect area = result.changed();
        EXPECT_NEAR(area.right() + 1, 300 - 18, 1.6);
        EXPECT_NEAR(area.bottom() + 1, 200 - 18, 1.6);
    }
}

TEST(PdfDocuments, PositiveDegreesTurnCounterClockwise) {
    const auto with = configuration(u"IIIIIIIIII.");
    with->anchor = 4;
    with->degrees = 90;
    const Stamped result(document(1, kPage, ""), {with});
    // The full stop ends the text, so its ink, the narrowest, is at the top.
    const QImage page = shownPage(result.out(), 1, 288);
    const QRect area = differingArea(shownPage(result.in(), 1, 288), page);
    const auto inkInRow = [&](int y) {
        int ink = 0;
        for (int x = area.left(); x <= area.right(); ++x)
            ink += qGray(page.pixel(x, y)) < 128;
        return ink;
    };
    EXPECT_LT(inkInRow(area.top() + 2), area.width() / 3);
    EXPECT_GT(inkInRow(area.bottom() - 2), area.width() * 2 / 3);
}

TEST(PdfDocuments, RastersAndDocumentsAgree) {
    const auto with = configuration(u"");
    auto outlined =
        std::make_shared<support::PlainFont>(u"NimbusRoman-Bold", 40, host::NSColor::colorWithSRGB(0, 0, 1, 0.5));
    outlined->outlined = true;
    outlined->stroke = 1.5;
    outlined->struckThrough = true;
    auto underlined = std::make_shared<support::PlainFont>(u"DejaVuSans-Bold", 20);
    underlined->underlined = true;
    with->setTitle({fontRun(outlined), std::u16string(u"Outline\n"), fontRun(underlined), std::u16string(u"under"),
                    fontRun(u"DejaVuSans", 11, host::NSColor::colorWithSRGB(0, 0.5, 0, 1)), std::u16string(u" small")});
    with->anchor = 5;
    with->degrees = 17;
    with->style = 2;
    with->bordered = with->filled = true;
    with->thickness = 3;
    with->lineColour = host::NSColor::colorWithSRGB(1, 0, 0, 1);
    with->areaColour = host::NSColor::colorWithSRGB(1, 1, 0, 1);
    with->opacity = 0.5;
    for (int style = 1; style <= 7; ++style) {
        SCOPED_TRACE(style);
        with->style = style;
        const Stamped document(render::document(1, kPage, ""), {with});
        const QImage page = shownPage(document.out(), 1, 144);
        Folder folder;
        white(600, 400, QImage::Format_RGB32, 144).save((folder / "in.png").c_str());
        ASSERT_TRUE(engine::stampFile(job(folder / "in.png", folder / "out.png", {with})));
        const QImage picture((folder / "out.png").c_str());
        double difference = 0;
        double ink = 0;
        for (int y = 0; y < 400; ++y)
            for (int x = 0; x < 600; ++x) {
                const QRgb a = page.pixel(x, y);
                const QRgb b = picture.pixel(x, y);
                difference +=
                    std::abs(qRed(a) - qRed(b)) + std::abs(qGreen(a) - qGreen(b)) + std::abs(qBlue(a) - qBlue(b));
                ink += 3 * 255 - qRed(a) - qGreen(a) - qBlue(a);
            }
        EXPECT_GT(ink, 1e5);
        EXPECT_LT(difference / ink, 0.08);
    }
}

TEST(PdfDocuments, PlaceholdersFollowThePage) {
    const auto with = configuration(u"");
    with->setTitle({std::u16string(u"Page "), std::u16string(u"%pageNumber%"), std::u16string(u" of "),
                    std::u16string(u"%recordPageCount%"), std::u16string(u": "), std::u16string(u"%recordName%"),
                    std::u16string(u" "), std::u16string(u"%colour%")});
    const Stamped result(document(3, kPage, kGreyCorner), {with});
    EXPECT_EQ(result.text(1), "Page 1 of 3: in %colour%");
    EXPECT_EQ(result.text(3), "Page 3 of 3: in %colour%");
    ASSERT_EQ(result.outcome.warnings.size(), 1U);
    EXPECT_NE(result.outcome.warnings.front().sentence().find("%colour%"), std::string::npos);
    EXPECT_EQ(result.outcome.pagesStamped, 3U);
}

TEST(PdfDocuments, OnlyChosenPagesChange) {
    const auto with = configuration(u"Chosen");
    with->pages = 4;
    with->customPages = u"4,2,9,-1,,2";
    const Stamped result(document(5, kPage, kGreyCorner), {with});
    EXPECT_EQ(result.outcome.pagesStamped, 2U);
    for (int page = 1; page <= 5; ++page)
        EXPECT_EQ(result.text(page), page % 2 == 0 ? "Chosen" : "") << page;
}

TEST(PdfDocuments, ACombinedConfigurationStampsItsMembersEachWithItsOwnPlaceAndPages) {
    const auto first = configuration(u"every");
    const auto second = configuration(u"even");
    second->anchor = 8;
    second->pages = 2;
    const auto both = configuration(u"never shown");
    both->isCombined = true;
    both->pages = 4;
    // What it was told about place and looks is no part of its stamp.
    both->degrees = 45;
    both->shift = {100, 100};
    both->style = 1;
    both->bordered = both->filled = true;
    both->members = {first, second, both};
    const Stamped result(document(2, kPage, kGreyCorner), {both});
    const Stamped members(document(2, kPage, kGreyCorner), {first, second});
    EXPECT_TRUE(differingArea(shownPage(result.out(), 2), shownPage(members.out(), 2)).isEmpty());
    EXPECT_EQ(result.text(1), "every");
    EXPECT_EQ(result.text(2), "every\n\neven");
    both->members.clear(); // which held itself
}

TEST(PdfDocuments, LigaturesMarksAndOtherScriptsAreReadBackExactly) {
    struct Case {
        const char* name;
        std::u16string text;
        const char* face;
    };
    const Case cases[] = {
        {"ligature", u"office fluff", "DejaVuSans"},
        {"decomposed accent", u"cafe\u0301 bar", "DejaVuSans"},
        {"stacked marks", u"x\u0323\u0302 y", "DejaVuSans"},
        {"Han by fallback", u"\u6f22\u5b57 mixed", "NimbusSans-Regular"},
        {"Hebrew", u"\u05e9\u05dc\u05d5\u05dd", "DejaVuSans"},
        {"Arabic", u"\u0645\u0631\u062d\u0628\u0627", "DejaVuSans"},
        {"Greek and Cyrillic", u"\u0391\u03b2\u03b3 \u0416\u0436", "NimbusRoman-Regular"},
        {"parentheses and backslashes", u"(a\\b) <c> [d] {e} /f %g", "DejaVuSans"},
    };
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const auto with = configuration(u"");
        with->setTitle({fontRun(platform::fromUtf8(row.face), 14), row.text});
        const Stamped result(document(1, kPage, kGreyCorner), {with});
        EXPECT_TRUE(result.outcome.warnings.empty()) << result.outcome.warnings.front().sentence();
        std::string found = result.text();
        // The reader puts embedding marks around right-to-left lines.
        for (const char* mark : {"\u202a", "\u202b", "\u202c"})
            for (auto at = found.find(mark); at != std::string::npos; at = found.find(mark))
                found.erase(at, 3);
        EXPECT_EQ(found, platform::toUtf8(row.text));
        EXPECT_EQ(result.complaints(), "");
    }
}

TEST(PdfDocuments, OutlinedTextStaysSearchable) {
    const auto with = configuration(u"");
    auto font = std::make_shared<support::PlainFont>(u"DejaVuSans", 30);
    font->outlined = true;
    with->setTitle({fontRun(font), std::u16string(u"Hollow")});
    const Stamped result(document(1, kPage, kGreyCorner), {with});
    EXPECT_EQ(result.text(), "Hollow");
}

TEST(PdfDocuments, AFontTheMachineLacksIsReplacedAndReported) {
    const auto with = configuration(u"");
    with->setTitle({fontRun(u"NoSuchFace-Bold", 12), std::u16string(u"Replaced")});
    const Stamped result(document(1, kPage, kGreyCorner), {with});
    EXPECT_EQ(result.text(), "Replaced");
    ASSERT_EQ(result.outcome.warnings.size(), 1U);
    EXPECT_NE(result.outcome.warnings.front().sentence().find("NoSuchFace-Bold"), std::string::npos);
}

TEST(PdfDocuments, WhateverStateTheContentLeavesTheStampStandsTheSameAndThePageToo) {
    struct Case {
        const char* name;
        std::string content;
    };
    const Case cases[] = {
        {"a transformation left over", "2 0 0 2 40 40 cm 0 1 0 rg 0 0 10 10 re f"},
        {"one missing restore", "q 0.5 0 0 0.5 0 0 cm 0 0 50 50 re f"},
        {"three missing restores", "q q q 2 0 0 2 0 0 cm 0 0 50 50 re f"},
        {"text left open", "BT 3 0 0 3 0 0 Tm"},
        {"marked content left open", "/Span BMC /Span <</A 1>> BDC 5 5 30 30 re f"},
        {"a comment at the end", "5 5 30 30 re f % Q Q Q"},
        {"operators in strings", "(Q ET \\) EMC) pop 5 5 30 30 re f"},
        {"an inline image with operators in its data",
         "q 20 0 0 20 5 5 cm BI /W 4 /H 1 /BPC 8 /CS /G ID Q Q\nEI Q 1 0 0 rg 50 50 9 9 re f"},
        {"a clip", "0 0 10 10 re W n"},
        {"nothing at all", ""},
    };
    const auto with = configuration(u"Same place");
    const Stamped plain(document(1, kPage, ""), {with});
    const QRect expected = plain.changed();
    for (const auto& row : cases) {
        SCOPED_TRACE(row.name);
        const Stamped result(document(1, kPage, row.content), {with});
        EXPECT_EQ(result.changed(), expected);
        EXPECT_EQ(result.text(), "Same place");
    }
}

TEST(PdfDocuments, ASurplusRestoreIsPassedOverAsViewersDo) {
    const auto with = configuration(u"Same place");
    const Stamped surplus(document(1, kPage, "1 0 0 rg Q Q q 3 0 0 3 0 0 cm 5 5 10 10 re f"), {with});
    const Stamped clean(document(1, kPage, "1 0 0 rg q 3 0 0 3 0 0 cm 5 5 10 10 re f Q"), {with});
    EXPECT_TRUE(differingArea(shownPage(surplus.out()), shownPage(clean.out())).isEmpty());
    EXPECT_FALSE(clean.changed().isEmpty());
}

TEST(PdfDocuments, ALigatureStandsForItsLettersInReadingOrder) {
    const auto with = configuration(u"\u0644\u0627");
    const Stamped result(document(1, kPage, kGreyCorner), {with});
    const auto plain = run("qpdf --qdf --object-streams=disable " + quoted(result.out()) + " -").output;
    EXPECT_NE(plain.find("<06440627>"), std::string::npos);
}
