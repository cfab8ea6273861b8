// SPDX-License-Identifier: MIT
// A picture and a document that are stamped with one configuration look alike.
#include "Documents.h"
#include "Render.h"

#include <Foundation/NSString.h>
#include <engine/PreviewStamper.h>

#include <gtest/gtest.h>

#include <random>

using namespace render;

namespace {

constexpr int kConfigurations = 200;
constexpr int kDotsPerInch = 100;
constexpr double kWidth = 595.44; // points, so that a page has whole pixels: 827 × 1169
constexpr double kHeight = 841.68;

class Chance {
public:
    explicit Chance(unsigned seed) : m_source(seed) {}
    double between(double low, double high) { return std::uniform_real_distribution(low, high)(m_source); }
    int upTo(int last) { return std::uniform_int_distribution(0, last)(m_source); }
    bool yes() { return upTo(1) == 1; }
    std::shared_ptr<const host::NSColor> colour() {
        return host::NSColor::colorWithSRGB(between(0, 1), between(0, 1), between(0, 1), yes() ? 1 : between(0.1, 1));
    }

private:
    std::mt19937 m_source;
};

std::shared_ptr<support::PlainConfiguration> anyConfiguration(Chance& chance) {
    static const char16_t* const faces[] = {u"DejaVuSans", u"DejaVuSans-Bold", u"DejaVuSerif", u"DejaVuSansMono"};
    static const char16_t* const texts[] = {u"Received ", u"No. 4711",   u"fi ffl ", u"Übergröße",
                                            u"שלום ",     u"two\nlines", u"Привет ", u"CONFIDENTIAL"};
    std::vector<host::TitleToken> tokens;
    for (int run = chance.upTo(2); run >= 0; --run) {
        auto font = std::make_shared<support::PlainFont>(faces[chance.upTo(3)], chance.between(6, 48), chance.colour());
        font->outlined = chance.upTo(3) == 0;
        font->stroke = chance.between(0.2, 3);
        font->underlined = chance.yes();
        font->struckThrough = chance.upTo(3) == 0;
        tokens.push_back(support::fontRun(font));
        tokens.emplace_back(std::u16string(texts[chance.upTo(7)]));
    }
    auto made = std::make_shared<support::PlainConfiguration>(tokens);
    made->anchor = chance.upTo(8);
    made->shift = {chance.between(-30, 30), chance.between(-30, 30)};
    made->degrees = chance.yes() ? 0 : chance.between(-180, 180);
    made->style = chance.upTo(7);
    made->bordered = chance.yes();
    made->thickness = chance.between(0.3, 8);
    made->lineColour = chance.yes() ? chance.colour() : nullptr;
    made->filled = chance.yes();
    made->areaColour = chance.yes() ? chance.colour() : nullptr;
    made->opacity = chance.between(0, 1);
    return made;
}

/// The share of pixels that differ by more than 16 levels in a channel, of those in which a stamp changed one of the
/// pages: two readers of one photograph differ a little everywhere.
double differingShare(const QImage& a, const QImage& b, const QImage& plainA = {}, const QImage& plainB = {}) {
    qint64 differing = 0;
    for (int y = 0; y < a.height(); ++y)
        for (int x = 0; x < a.width(); ++x) {
            const QRgb p = a.pixel(x, y);
            const QRgb q = b.pixel(x, y);
            if (!plainA.isNull() && p == plainA.pixel(x, y) && q == plainB.pixel(x, y))
                continue;
            if (std::abs(qRed(p) - qRed(q)) > 16 || std::abs(qGreen(p) - qGreen(q)) > 16 ||
                std::abs(qBlue(p) - qBlue(q)) > 16)
                ++differing;
        }
    return static_cast<double>(differing) / (static_cast<double>(a.width()) * a.height());
}

} // namespace

TEST(Agreement, PicturesAndDocumentsDifferInLessThanTwoPercentOfTheirPixels) {
    const Folder folder;
    const auto plain = folder / "plain.png";
    ASSERT_TRUE(white(827, 1169, QImage::Format_RGB32, kDotsPerInch).save(plain.c_str(), "png"));
    writeFile(folder / "in.pdf",
              document(kConfigurations,
                       "/MediaBox [0 0 " + std::to_string(kWidth) + " " + std::to_string(kHeight) + "]", ""));
    Chance chance(20261121);
    std::vector<std::shared_ptr<support::PlainConfiguration>> all;
    for (int page = 1; page <= kConfigurations; ++page) {
        all.push_back(anyConfiguration(chance));
        all.back()->pages = 4;
        all.back()->customPages = platform::fromUtf8(std::to_string(page));
    }
    const auto outcome = engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", all));
    ASSERT_TRUE(outcome) << outcome.sentence;
    const auto shown = run("pdftoppm -r " + std::to_string(kDotsPerInch) + " -cropbox " + quoted(folder / "out.pdf") +
                           " " + quoted(folder / "page"));
    ASSERT_EQ(shown.status, 0) << shown.output;

    const Folder results;
    engine::PreviewStamper stamper{results.path()};
    double worst = 0;
    int inked = 0;
    for (int page = 1; page <= kConfigurations; ++page) {
        const auto& with = all[static_cast<std::size_t>(page - 1)];
        with->pages = 0;
        const auto preview = stamper.stamp(plain, with);
        ASSERT_TRUE(preview) << preview.sentence;
        const QImage picture = QImage(preview.path.c_str()).convertToFormat(QImage::Format_RGB32);
        const auto number = std::to_string(1000 + page).substr(1);
        const QImage document(((folder / "page").string() + "-" + number + ".ppm").c_str());
        ASSERT_EQ(document.size(), picture.size());
        const double share = differingShare(picture, document);
        worst = std::max(worst, share);
        inked += differingArea(picture, white(827, 1169)).isEmpty() ? 0 : 1;
        EXPECT_LT(share, 0.02) << "configuration " << page;
    }
    EXPECT_GT(inked, kConfigurations * 9 / 10) << "stamps that are not seen show nothing";
    RecordProperty("worst", std::to_string(worst));
    std::cout << "the worst pair differs in " << worst * 100 << " % of its pixels\n";
}

TEST(Agreement, ThePreviewOfTheSamplePageLooksLikeADocumentOfIt) {
    const Folder folder;
    const Folder results;
    const auto sample = std::filesystem::path(SAMPLE_PAGE);
    const QImage page(sample.c_str());
    ASSERT_EQ(page.size(), QSize(1240, 1754));
    // The page fills a document's at 150 dots an inch, as it says of itself.
    const auto size = "[0 0 " + std::to_string(1240 * 0.48) + " " + std::to_string(1754 * 0.48) + "]";
    DocumentBytes bytes;
    bytes.add("<</Type /Catalog /Pages 2 0 R>>");
    bytes.add("<</Type /Pages /Kids [3 0 R] /Count 1>>");
    bytes.add("<</Type /Page /Parent 2 0 R /MediaBox " + size +
              " /Resources <</XObject <</Page 4 0 R>>>> /Contents 5 0 R>>");
    bytes.addStream(readFile(sample), "/Type /XObject /Subtype /Image /Width 1240 /Height 1754 /BitsPerComponent 8 "
                                      "/ColorSpace /DeviceRGB /Filter /DCTDecode");
    bytes.addStream("q " + std::to_string(1240 * 0.48) + " 0 0 " + std::to_string(1754 * 0.48) + " 0 0 cm /Page Do Q");
    writeFile(folder / "in.pdf", bytes.bytes());

    engine::PreviewStamper stamper{results.path()};
    const QImage plainPicture = page.convertToFormat(QImage::Format_RGB32);
    const QImage plainDocument = shownPage(folder / "in.pdf", 1, 150).convertToFormat(QImage::Format_RGB32);
    Chance chance(11212026);
    for (int round = 0; round < 12; ++round) {
        auto with = anyConfiguration(chance);
        auto tokens = *with->tokens;
        tokens.emplace_back(std::u16string(u"%pageNumber%"));
        tokens.emplace_back(std::u16string(u"%recordPageCount%"));
        with->setTitle(tokens);
        if (round % 4 == 3) {
            const auto combined = std::make_shared<support::PlainConfiguration>();
            combined->isCombined = true;
            combined->members = {with, anyConfiguration(chance)};
            with = combined;
        }
        const auto preview = stamper.stamp(sample, with);
        ASSERT_TRUE(preview) << preview.sentence;
        ASSERT_TRUE(engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", {with})));
        const QImage picture = QImage(preview.path.c_str()).convertToFormat(QImage::Format_RGB32);
        const QImage document = shownPage(folder / "out.pdf", 1, 150).convertToFormat(QImage::Format_RGB32);
        ASSERT_EQ(document.size(), picture.size());
        EXPECT_LT(differingShare(picture, document, plainPicture, plainDocument), 0.02) << "configuration " << round;
        EXPECT_FALSE(differingArea(picture, plainPicture).isEmpty());
    }
}
