// SPDX-License-Identifier: MIT
// Anchor, offset and rotation together, on the preview and on documents.
#include "Documents.h"
#include "Render.h"

#include <Foundation/NSString.h>
#include <engine/PreviewStamper.h>

#include <gtest/gtest.h>

using namespace render;

namespace {

constexpr double kMargin = 18;
constexpr double kRight = 7;
constexpr double kUp = -4;

/// A filled box, whose edges can be found, on the page of the anchor's number.
std::shared_ptr<support::PlainConfiguration> box(int anchor, double degrees) {
    auto with = configuration(u"Where");
    with->anchor = anchor;
    with->shift = {kRight, kUp};
    with->degrees = degrees;
    with->style = 1;
    with->filled = true;
    with->areaColour = host::NSColor::colorWithSRGB(1, 0, 0, 1);
    with->pages = 4;
    with->customPages = platform::fromUtf8(std::to_string(anchor + 1));
    return with;
}

/// Whether the ink's bounding box stands at the anchor of a page of this size, moved by the offset. In pixels, of which
/// a point has `scale`.
void expectAtAnchor(const QRect& ink, int anchor, QSizeF page, double scale) {
    const auto along = [&](int place, double whole, double part) {
        return place == 0 ? kMargin * scale : place == 1 ? (whole - part) / 2 : whole - kMargin * scale - part;
    };
    ASSERT_GT(ink.width(), 10);
    EXPECT_NEAR(ink.left(), along(anchor % 3, page.width(), ink.width()) + kRight * scale, 1.6);
    EXPECT_NEAR(ink.top(), along(anchor / 3, page.height(), ink.height()) - kUp * scale, 1.6);
}

TEST(StampLocation, OffsetAndRotationHoldOnTurnedPagesWhoseCropBoxLiesAwayFromTheOrigin) {
    for (const int rotate : {0, 90, 180, 270})
        for (const double degrees : {0.0, 30.0, -90.0}) {
            const Folder folder;
            writeFile(folder / "in.pdf",
                      document(9,
                               "/MediaBox [-50 20 400 300] /CropBox [30 50 330 250] /Rotate " + std::to_string(rotate),
                               "0.5 g 40 60 20 20 re f"));
            std::vector<std::shared_ptr<support::PlainConfiguration>> boxes;
            for (int anchor = 0; anchor < 9; ++anchor)
                boxes.push_back(box(anchor, degrees));
            const auto outcome = engine::stampFile(job(folder / "in.pdf", folder / "out.pdf", boxes));
            ASSERT_TRUE(outcome) << outcome.sentence;
            const bool sideways = rotate % 180 != 0;
            const QSizeF page = sideways ? QSizeF(200, 300) : QSizeF(300, 200);
            const QImage before = shownPage(folder / "in.pdf");
            for (int anchor = 0; anchor < 9; ++anchor) {
                SCOPED_TRACE("/Rotate " + std::to_string(rotate) + ", turned by " + std::to_string(degrees) +
                             ", anchor " + std::to_string(anchor));
                expectAtAnchor(differingArea(before, shownPage(folder / "out.pdf", anchor + 1)), anchor, page, 1);
            }
        }
}

TEST(StampLocation, ThePreviewShowsTheStampWhereADocumentGetsIt) {
    const Folder folder;
    const Folder results;
    const auto sample = folder / "sample.png";
    white(600, 400, QImage::Format_RGB32, 150).save(sample.c_str(), "png");
    engine::PreviewStamper stamper{results.path()};
    for (const double degrees : {0.0, 30.0, -90.0})
        for (int anchor = 0; anchor < 9; ++anchor) {
            SCOPED_TRACE("turned by " + std::to_string(degrees) + ", anchor " + std::to_string(anchor));
            const auto outcome = stamper.stamp(sample, box(anchor, degrees));
            ASSERT_TRUE(outcome) << outcome.sentence;
            expectAtAnchor(differingArea(QImage(sample.c_str()), QImage(outcome.path.c_str())), anchor,
                           QSizeF(600, 400), 150 / 72.0);
        }
}

} // namespace
