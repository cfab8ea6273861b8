// SPDX-License-Identifier: MIT
// Titles in many scripts and directions: `pdftotext` gives back exactly what was stamped.

#include "Documents.h"
#include "Render.h"

#include <AppKit/FontSource.h>
#include <Foundation/NSString.h>

#include <fontconfig/fontconfig.h>
#include <gtest/gtest.h>

using namespace render;
using support::fontRun;

namespace {

struct Title {
    const char* name;
    std::u16string text;
};

const Title kTitles[] = {
    {"plain", u"Received by the office"},
    {"one letter", u"A"},
    {"a fraction of digits", u"1 / 3"},
    {"a paragraph's number", u"\u00a7 5"},
    {"a letter and a digit", u"A 1"},
    {"spaced letters", u"D R A F T"},
    {"spaced ideographs", u"\u4e00 \u4e8c \u4e09"},
    {"spaced letters above words", u"N o\nand the second"},
    {"double spaces", u"No.  12   of  3"},
    {"spaces around it", u"  indented  "},
    {"ligatures", u"office fluff affine"},
    {"kerning", u"AVATAR To. Wa Ty"},
    {"two lines", u"First line\nand the second"},
    {"three lines, one empty", u"First\n\nthird"},
    {"lines with spaces", u"a  b\n c d \ne"},
    {"punctuation", u"(a\\b) <c> [d] {e} /f %g \"h\" \u2014 \u2026"},
    {"decomposed accents", u"cafe\u0301 na\u00efve A\u030a"},
    {"stacked marks", u"x\u0323\u0302 y"},
    {"soft hyphen and no-break space", u"a\u00a0b 10\u202f000"},
    {"Greek and Cyrillic", u"\u0391\u03b2\u03b3 \u0416\u0436"},
    {"Vietnamese", u"Ti\u1ebfng Vi\u1ec7t"},
    {"Chinese", u"\u6536\u5230 2026\u5e74"},
    {"Japanese", u"\u53d7\u4ed8\u6e08\u307f \u30ab\u30bf\u30ab\u30ca"},
    {"Korean", u"\uc811\uc218 \uc644\ub8cc"},
    {"beyond the first plane", u"\U0001D400\U0001D401 x"},
    {"Devanagari", u"\u092a\u094d\u0930\u093e\u092a\u094d\u0924 \u0939\u093f\u0928\u094d\u0926\u0940 "
                   u"\u0915\u094d\u0937\u0947\u0924\u094d\u0930"},
    {"Thai", u"\u0e44\u0e14\u0e49\u0e23\u0e31\u0e1a\u0e41\u0e25\u0e49\u0e27 \u0e19\u0e49\u0e33"},
    {"Hebrew", u"\u05e9\u05dc\u05d5\u05dd \u05e2\u05d5\u05dc\u05dd"},
    {"Hebrew with points", u"\u05e9\u05b8\u05c1\u05dc\u05d5\u05b9\u05dd"},
    {"Arabic", u"\u0645\u0631\u062d\u0628\u0627 \u0628\u0627\u0644\u0639\u0627\u0644\u0645"},
    {"Arabic with marks", u"\u0645\u064f\u062d\u064e\u0645\u0651\u064e\u062f"},
    {"Hebrew with a number", u"\u05e2\u05de\u05d5\u05d3 12 \u05de\u05ea\u05d5\u05da 345"},
    {"Latin with Hebrew", u"Page \u05e2\u05de\u05d5\u05d3 end"},
    {"Hebrew with Latin", u"\u05e2\u05de\u05d5\u05d3 Page \u05e1\u05d5\u05e3"},
    {"Arabic, Latin and numbers", u"\u0635\u0641\u062d\u0629 12 of 345 \u0645\u0646"},
    {"Hebrew, double spaces", u"\u05e9\u05dc\u05d5\u05dd  \u05e2\u05d5\u05dc\u05dd"},
    {"Hebrew in parentheses", u"(\u05e9\u05dc\u05d5\u05dd)"},
    {"Arabic with a ligature", u"\u0644\u0627 \u0628\u0644\u0627"},
    {"Arabic digits", u"\u0635\u0641\u062d\u0629 \u0661\u0662 \u0645\u0646 \u0663"},
    {"Latin and Hebrew lines", u"Page 3\n\u05e2\u05de\u05d5\u05d3 3"},
    {"Hebrew with points at the end", u"\u05d1\u05bc\u05b8 end"},
    {"emoji", u"Done \U0001F98A ok"},
    {"emoji alone", u"\U0001F9FE"},
    {"joined emoji, flags and skin tones", u"\U0001F469\u200d\U0001F4BB \U0001F1E9\U0001F1EA \U0001F9D1\U0001F3FD"},
    {"Hebrew with an emoji", u"\u05e9\u05dc\u05d5\u05dd \U0001F98A"},
};

std::string withoutMarks(std::string text) {
    // The reader puts direction marks around lines.
    for (const char* mark : {"\u202a", "\u202b", "\u202c"})
        for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark))
            text.erase(at, 3);
    while (!text.empty() && (text.back() == '\f' || text.back() == '\n'))
        text.pop_back();
    return text;
}

/// Stamps each title onto a page of its own and answers what is read from these pages. `beside`: what else stands
/// there.
std::vector<std::string> readBack(double degrees, const std::string& beside = {}) {
    Folder folder;
    writeFile(folder / "in.pdf", document(static_cast<int>(std::size(kTitles)),
                                          "/MediaBox [0 0 600 600] /Resources << /Font << /F1 << /Type /Font /Subtype "
                                          "/Type1 /BaseFont /Helvetica >> >> >>",
                                          beside));
    std::vector<std::shared_ptr<support::PlainConfiguration>> configurations;
    for (const auto& title : kTitles) {
        const auto with = configuration(u"");
        with->setTitle({fontRun(u"DejaVuSans", 14), title.text});
        with->anchor = 4;
        with->degrees = degrees;
        with->pages = 4;
        with->customPages = platform::fromUtf8(std::to_string(configurations.size() + 1));
        configurations.push_back(with);
    }
    const auto outcome = engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", configurations));
    EXPECT_TRUE(outcome) << outcome.sentence;
    for (const auto& warning : outcome.warnings)
        ADD_FAILURE() << warning.sentence();
    const auto text = run("pdftotext -q -enc UTF-8 " + quoted(folder / "out.pdf") + " -").output;
    std::vector<std::string> pages;
    for (std::size_t at = 0, end = 0; (end = text.find('\f', at)) != std::string::npos; at = end + 1)
        pages.push_back(withoutMarks(text.substr(at, end - at)));
    EXPECT_EQ(pages.size(), std::size(kTitles));
    pages.resize(std::size(kTitles));
    return pages;
}

/// DejaVu Sans under another name, with a licence that forbids embedding: fsType, the fifth number of table OS/2, is 2.
std::string forbiddenFont() {
    auto bytes = readFile("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
    const auto number = [&](std::size_t at) {
        std::size_t value = 0;
        for (std::size_t i = 0; i < 4; ++i)
            value = value << 8 | static_cast<unsigned char>(bytes[at + i]);
        return value;
    };
    const auto entry = bytes.find("OS/2");
    bytes[number(entry + 8) + 9] = 2;
    const std::string was = "DejaVu";
    const std::string is = "Forbid";
    for (const bool wide : {false, true}) {
        const auto spelled = [wide](const std::string& name) {
            std::string result;
            for (const char c : name)
                result += wide ? std::string{'\0', c} : std::string{c};
            return result;
        };
        for (auto at = bytes.find(spelled(was)); at != std::string::npos; at = bytes.find(spelled(was), at + 1))
            bytes.replace(at, spelled(is).size(), spelled(is));
    }
    return bytes;
}

} // namespace

TEST(Scripts, EveryTitleIsReadBackExactlyHoweverItIsTurned) {
    for (const double degrees : {0.0, 30.0, 45.0, 90.0, -60.0, 180.0, 270.0}) {
        const auto pages = readBack(degrees);
        for (std::size_t i = 0; i < pages.size(); ++i)
            EXPECT_EQ(pages[i], platform::toUtf8(kTitles[i].text)) << kTitles[i].name << ", " << degrees;
    }
}

TEST(Scripts, EveryTitleIsReadBackExactlyOnAPageFullOfLatin) {
    const auto pages = readBack(0, "BT /F1 12 Tf 20 560 Td (Some words that stand on the page already) Tj ET");
    for (std::size_t i = 0; i < pages.size(); ++i)
        EXPECT_TRUE(pages[i].ends_with("\n" + platform::toUtf8(kTitles[i].text))) << kTitles[i].name << pages[i];
}

TEST(Scripts, EmojiArePicturesInColourInDocumentsAndPicturesAlike) {
    const auto with = configuration(u"");
    with->setTitle({fontRun(u"DejaVuSans", 60), std::u16string(u"\U0001F98A")});
    with->anchor = 4;
    Folder folder;
    writeFile(folder / "in.pdf", document(1, "/MediaBox [0 0 200 200]", ""));
    white(200, 200).save((folder / "in.png").c_str());
    ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", {with})));
    ASSERT_TRUE(engine::stampFile(job(folder / "in.png", folder / "out.png", {with})));
    const QImage page = shownPage(folder / "out.pdf");
    const QImage picture((folder / "out.png").c_str());
    const QRect onPage = differingArea(white(200, 200), page);
    const QRect onPicture = differingArea(white(200, 200), picture.convertToFormat(QImage::Format_RGB32));
    EXPECT_GT(onPage.height(), 40);
    for (const auto& [a, b] :
         {std::pair(onPage.left(), onPicture.left()), std::pair(onPage.top(), onPicture.top()),
          std::pair(onPage.right(), onPicture.right()), std::pair(onPage.bottom(), onPicture.bottom())})
        EXPECT_NEAR(a, b, 2);
    // A fox is orange, on both, and its ears are above its chin.
    for (const auto& image : {page, picture}) {
        int orange = 0;
        for (int y = 0; y < 200; ++y)
            for (int x = 0; x < 200; ++x) {
                const QColor colour = image.pixelColor(x, y);
                orange += colour.red() > 200 && colour.blue() < 120 && colour.green() < 200;
            }
        EXPECT_GT(orange, 400);
    }
    const auto rowOf = [](const QImage& image, int y) {
        int ink = 0;
        for (int x = 0; x < image.width(); ++x)
            ink += image.pixelColor(x, y).lightness() < 250;
        return ink;
    };
    EXPECT_NEAR(rowOf(page, onPage.top() + 4), rowOf(picture, onPicture.top() + 4), 6);
    EXPECT_NEAR(rowOf(page, onPage.bottom() - 4), rowOf(picture, onPicture.bottom() - 4), 6);
}

TEST(Scripts, AFontThatMayNotBeEmbeddedIsDrawnAsOutlinesAndStillRead) {
    Folder folder;
    writeFile(folder / "Forbidden.ttf", forbiddenFont());
    ASSERT_TRUE(FcConfigAppFontAddFile(nullptr, reinterpret_cast<const FcChar8*>((folder / "Forbidden.ttf").c_str())));
    platform::FontSource::setCurrent(nullptr); // which lists the fonts anew
    const auto with = configuration(u"");
    with->setTitle({fontRun(u"ForbidSans", 14), std::u16string(u"Secret  letters")});
    writeFile(folder / "in.pdf", document(1, "/MediaBox [0 0 300 200]", ""));
    const auto outcome = engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", {with}));
    platform::FontSource::setCurrent(nullptr);
    ASSERT_TRUE(outcome) << outcome.sentence;
    ASSERT_EQ(outcome.warnings.size(), 1U);
    EXPECT_EQ(outcome.warnings.front().sentence(),
              "The font \"ForbidSans\" may not be embedded; its text is drawn as outlines.");
    EXPECT_EQ(run("pdffonts " + quoted(folder / "out.pdf")).output.find("ForbidSans"), std::string::npos);
    EXPECT_GT(differingArea(shownPage(folder / "in.pdf"), shownPage(folder / "out.pdf")).width(), 60);
    EXPECT_EQ(withoutMarks(run("pdftotext " + quoted(folder / "out.pdf") + " -").output), "Secret  letters");
}
