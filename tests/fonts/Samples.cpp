// SPDX-License-Identifier: MIT
// How a name is drawn in its own font, shown on fonts of our own making: their letters are boxes, whose width tells
// which file was drawn from.
#include "MadeFonts.h"

#include "FontFace.h"
#include "FontSample.h"

#include <engine/FaceLibrary.h>

#include <QFontInfo>
#include <QImage>
#include <QPainter>

#include <gtest/gtest.h>

using namespace platform;
using platform::qt::FontFace;
using platform::qt::FontSample;

namespace {

using Means = FontSample::Means;

QFont control() {
    QFont font(QStringLiteral("Maker Sans"));
    font.setPixelSize(26); // twice what 13 points are made for
    return font;
}

FontSample sampleOf(const std::shared_ptr<NSFont>& font, const std::u16string& text = u"AB") {
    NSMenuItem item(text);
    if (font)
        item.setAttributedTitle(
            std::make_shared<NSAttributedString>(text, NSAttributedString::Attributes{{NSFontAttributeName, font}}));
    return {item, control()};
}

FontSample sampleOf(const std::u16string& fontName, const std::u16string& text = u"AB") {
    const auto font = NSFont::fontWithNameSize(fontName, 13);
    EXPECT_TRUE(font);
    return sampleOf(font, text);
}

QImage drawn(const FontSample& sample, int width = 400) {
    QImage image(width, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setPen(Qt::black);
    sample.draw(painter, image.rect());
    return image;
}

/// The lengths of the dark stretches along the middle of the picture.
std::vector<int> stretches(const QImage& image) {
    std::vector<int> lengths;
    bool dark = false;
    for (int x = 0; x < image.width(); ++x) {
        const bool isDark = qGray(image.pixel(x, 20)) < 128;
        if (isDark && !dark)
            lengths.push_back(0);
        if (isDark)
            ++lengths.back();
        dark = isDark;
    }
    return lengths;
}

/// How wide the box of a letter is drawn, in units of the font; the box is 100 narrower than its glyph.
double widthOfLetter(const std::u16string& fontName) {
    const auto found = stretches(drawn(sampleOf(fontName, u"A")));
    return found.size() == 1 ? found.front() * 1000.0 / 26 + 100 : 0;
}

/// What a letter is wide in the engine's own outlines.
double widthInEngine(const char* fontName) {
    engine::FaceLibrary faces("MakerSans");
    const auto face = faces.faceNamed(fontName);
    if (!face)
        return 0;
    double right = 0;
    for (const auto& element : face->outline(2).elements)
        right = std::max(right, element.to.x);
    return right + 50;
}

constexpr double pixel = 1000.0 / 26;

TEST(FontSample, TheToolkitDrawsWhereItOpenedTheVeryFace) {
    const auto sample = sampleOf(u"MakerSans-Bold");
    EXPECT_EQ(sample.means(), Means::toolkit);
    EXPECT_FALSE(sample.isSymbolic());
    EXPECT_NEAR(widthOfLetter(u"MakerSans-Bold"), 600, pixel);
    EXPECT_NEAR(widthOfLetter(u"MakerSans"), 500, pixel);
}

TEST(FontSample, EveryFaceIsDrawnFromTheFileItsNameStandsFor) {
    for (const auto& [name, width] :
         std::vector<std::pair<std::u16string, double>>{{u"MakerTwice", 510},
                                                        {u"MakerFirst", 530},
                                                        {u"MakerSecond", 540},
                                                        {u"MakerVariable", 400},
                                                        {u"MakerVariable_200wdth", 800},
                                                        {u"MakerVariable_150wdth", 600},
                                                        {u"MakerVariable_120wdth", 500},
                                                        {u"Maker-Nameless-Wide", 600},
                                                        {u"Maker-Nameless-ExtraWide", 800}}) {
        const std::string utf8(name.begin(), name.end());
        EXPECT_NEAR(widthOfLetter(name), width, pixel) << utf8;
        EXPECT_NEAR(widthInEngine(utf8.c_str()), width, 1) << utf8;
    }
}

TEST(FontSample, AFaceOfAVariableFileIsDrawnFromItsOutlines) {
    for (const auto* name : {u"MakerVariable", u"MakerVariable_200wdth"})
        EXPECT_EQ(sampleOf(name).means(), Means::outlines);
}

TEST(FontSample, WhereTheToolkitOpensAnotherFileTheOutlinesAreDrawn) {
    // Both files are called the same; one of them is what the toolkit opens for either.
    auto files = FontSource::current()->filesOf(u"MakerTwice");
    ASSERT_EQ(files.size(), 2u);
    const auto first = FontFace::open(files[0]);
    const auto second = FontFace::open(files[1]);
    ASSERT_TRUE(first && second);
    const auto isSet = [](const FontFace& face) {
        return face.isWhatToolkitSets(QStringLiteral("AB"), face.toolkitFont());
    };
    EXPECT_NE(isSet(*first), isSet(*second));
}

TEST(FontSample, ASymbolicFaceKeepsAReadableNameBesideItsSample) {
    for (const auto* name : {u"MakerSymbol", u"MakerSigns"}) {
        const auto sample = sampleOf(name);
        EXPECT_TRUE(sample.isSymbolic());
        EXPECT_EQ(stretches(drawn(sample)).size(), 4u); // two letters, twice
    }
    EXPECT_EQ(stretches(drawn(sampleOf(u"MakerSans"))).size(), 2u);
}

TEST(FontSample, ANameTheFaceHasNoLettersForIsDrawnInTheControlFont) {
    EXPECT_EQ(sampleOf(u"MakerCyrillic", u"Latin").means(), Means::control);
    EXPECT_NE(sampleOf(u"MakerCyrillic", u"Ж").means(), Means::control);
}

TEST(FontSample, TheMenuFontIsTheControlsOwnAtItsSize) {
    const auto regular = sampleOf(NSFont::menuFontOfSize(13));
    EXPECT_EQ(regular.means(), Means::control);
    EXPECT_EQ(regular.font().pixelSize(), 26);
    EXPECT_EQ(sampleOf(NSFont::menuFontOfSize(9)).font().pixelSize(), 18);
}

TEST(FontSample, SizesAreRelativeToTheControlFont) {
    EXPECT_EQ(sampleOf(u"MakerSans").font().pixelSize(), 26);
    EXPECT_EQ(sampleOf(NSFont::fontWithNameSize(u"MakerSans", 6.5)).font().pixelSize(), 13);
}

TEST(FontSample, APlainItemIsDrawnInTheControlFont) {
    EXPECT_EQ(sampleOf(std::shared_ptr<NSFont>()).means(), Means::control);
    EXPECT_EQ(stretches(drawn(sampleOf(std::shared_ptr<NSFont>()))).size(), 2u);
}

TEST(FontSample, NothingIsDrawnBeyondItsPlace) {
    for (const auto* name : {u"MakerSans", u"MakerVariable_200wdth", u"MakerSymbol"}) {
        QImage image(200, 40, QImage::Format_RGB32);
        image.fill(Qt::white);
        QPainter painter(&image);
        painter.setPen(Qt::black);
        sampleOf(name, u"AAAAAAAAAAAAAAAAAA").draw(painter, {0, 0, 60, 40});
        painter.end();
        const auto beyond = image.copy(61, 0, 139, 40);
        EXPECT_TRUE(stretches(beyond).empty());
    }
}

TEST(FontSample, AFileThatIsGoneIsReplacedByTheControlFont) {
    made_fonts::withoutFile("removed.ttf", [] {
        const auto sample = sampleOf(u"MakerRemoved");
        EXPECT_EQ(sample.means(), Means::control);
        EXPECT_EQ(stretches(drawn(sample)).size(), 2u);
    });
}

TEST(FontSample, ADamagedFileIsReplacedByTheControlFont) {
    const auto whole = std::filesystem::file_size(made_fonts::file("damaged.ttf"));
    for (const auto size : {std::uintmax_t(0), std::uintmax_t(100), whole / 4, whole / 2, whole * 3 / 4, whole - 40}) {
        made_fonts::withFileCutOff("damaged.ttf", size, [size] {
            // As it would be found by the first who draws with it.
            const auto face = FontFace::open(FontSource::current()->filesOf(u"MakerDamaged").at(0));
            if (face && !face->outlines(QStringLiteral("A"), 26).isEmpty())
                return; // so much of it is left
            const auto sample = sampleOf(u"MakerDamaged");
            EXPECT_EQ(sample.means(), Means::control) << size;
            EXPECT_EQ(stretches(drawn(sample)).size(), 2u) << size;
        });
    }
}

TEST(FontSample, AFileThatIsCutOffAfterItWasOpenedIsDrawnAsItWas) {
    const auto whole = std::filesystem::file_size(made_fonts::file("damaged.ttf"));
    const auto files = FontSource::current()->filesOf(u"MakerDamaged");
    ASSERT_FALSE(files.empty());
    const auto face = FontFace::open(files.front());
    ASSERT_TRUE(face);
    const auto untouched = FontFace::open(files.front())->outlines(QStringLiteral("A"), 26);
    ASSERT_FALSE(untouched.isEmpty());
    made_fonts::withFileCutOff("damaged.ttf", 0,
                               [&] { EXPECT_EQ(face->outlines(QStringLiteral("A"), 26), untouched); });
    EXPECT_EQ(std::filesystem::file_size(made_fonts::file("damaged.ttf")), whole);
}

TEST(FontSample, TheEngineDrawsADamagedFaceInTheDefaultOne) {
    made_fonts::withFileCutOff("damaged.ttf", 100, [] {
        engine::FaceLibrary faces("MakerSans");
        EXPECT_EQ(faces.faceNamed("MakerDamaged"), nullptr);
        ASSERT_TRUE(faces.defaultFace());
        EXPECT_EQ(faces.defaultFace()->postScriptName(), "MakerSans");
    });
}

} // namespace
