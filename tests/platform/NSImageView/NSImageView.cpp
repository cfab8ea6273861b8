// SPDX-License-Identifier: MIT
#include "Interface.h"
#include "Pictures.h"

#include <AppKit/NSImageView.h>

using namespace platform;
using namespace testing_support;

namespace {

class ImageViews : public InterfaceTest {
protected:
    void showView() {
        show({"image"}, column({widget("NSImageView", "image", setting("margin", "number", "10"))}),
             customClass("NSImageView", "QLabel"));
        image = view<NSImageView>("image");
        ASSERT_TRUE(image);
        shown("image")->setAttribute(Qt::WA_NoSystemBackground, false);
    }
    QImage seen() { return shown("image")->grab().toImage(); }
    QColor middle() {
        const auto picture = seen();
        return picture.pixelColor(picture.width() / 2, picture.height() / 2);
    }

    Pictures pictures;
    std::shared_ptr<NSImageView> image;
};

TEST_F(ImageViews, ShowNothingAtFirst) {
    showView();
    EXPECT_EQ(image->image(), nullptr);
    EXPECT_EQ(middle(), window->palette().color(QPalette::Window));
}

TEST_F(ImageViews, ShowTheWholePictureInItsProportionsInsideTheMargin) {
    showView();
    shown("image")->setFixedSize(220, 120);
    QCoreApplication::processEvents();
    image->setImage(NSImage::initWithContentsOfURL(pictures.write("red.png", Qt::red, {40, 40})));
    const auto picture = seen();
    QRect red;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (picture.pixelColor(x, y) == QColor(Qt::red))
                red |= QRect(x, y, 1, 1);
    EXPECT_EQ(red, QRect(60, 10, 100, 100));
}

TEST_F(ImageViews, APictureLargerThanTheViewIsReducedByAveraging) {
    showView();
    shown("image")->setFixedSize(120, 120);
    QImage stripes(1000, 1000, QImage::Format_RGB32);
    for (int y = 0; y < 1000; ++y)
        for (int x = 0; x < 1000; ++x)
            stripes.setPixelColor(x, y, x % 2 ? Qt::white : Qt::black);
    const auto path = folder.filePath(QStringLiteral("stripes.png"));
    stripes.save(path);
    image->setImage(NSImage::initWithContentsOfURL(NSURL::fileURLWithPath(path.toStdString())));
    EXPECT_NEAR(middle().red(), 128, 3);
}

TEST_F(ImageViews, AreClearedByNil) {
    showView();
    image->setImage(NSImage::initWithContentsOfURL(pictures.write("red.png", Qt::red)));
    EXPECT_EQ(middle(), QColor(Qt::red));
    image->setImage(nullptr);
    EXPECT_EQ(middle(), window->palette().color(QPalette::Window));
}

TEST_F(ImageViews, TakeNoFocus) {
    showView();
    EXPECT_FALSE(image->acceptsFirstResponder());
    QTest::mouseClick(shown("image"), Qt::LeftButton);
    EXPECT_FALSE(shown("image")->hasFocus());
}

TEST_F(ImageViews, AFileWrittenAnewUnderTheSameNameIsReadAnew) {
    showView();
    const auto url = pictures.write("page.bmp", Qt::red);
    image->setImage(NSImage::initWithContentsOfURL(url));
    EXPECT_EQ(middle(), QColor(Qt::red));
    pictures.write("page.bmp", Qt::blue);
    EXPECT_EQ(middle(), QColor(Qt::red));
    image->setImage(NSImage::initWithContentsOfURL(url));
    EXPECT_EQ(middle(), QColor(Qt::blue));
}

TEST_F(ImageViews, NoPictureComesFromANilURLAMissingFileOrOneThatIsNoPicture) {
    EXPECT_EQ(NSImage::initWithContentsOfURL(std::nullopt), nullptr);
    EXPECT_EQ(NSImage::initWithContentsOfURL(pictures.missing()), nullptr);
    EXPECT_EQ(NSImage::initWithContentsOfURL(NSURL::fileURLWithPath(folder.path().toStdString())), nullptr);
    write("text.png", "no picture");
    EXPECT_EQ(NSImage::initWithContentsOfURL(
                  NSURL::fileURLWithPath(folder.filePath(QStringLiteral("text.png")).toStdString())),
              nullptr);
    write("cut.bmp", "BM");
    EXPECT_EQ(NSImage::initWithContentsOfURL(
                  NSURL::fileURLWithPath(folder.filePath(QStringLiteral("cut.bmp")).toStdString())),
              nullptr);
}

TEST_F(ImageViews, APictureIsKnownByItsContentWhateverItsName) {
    QFile::copy(QString::fromStdString(pictures.write("red.png", Qt::red).path().string()),
                folder.filePath(QStringLiteral("red.jpg")));
    EXPECT_TRUE(NSImage::initWithContentsOfURL(
        NSURL::fileURLWithPath(folder.filePath(QStringLiteral("red.jpg")).toStdString())));
}

} // namespace
