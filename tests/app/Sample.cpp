// SPDX-License-Identifier: MIT
// The user's own document as the sample of the preview, its pages, and what the preview gives away.

#include "WindowTest.h"

#include "../render/Documents.h"

#include <PreviewDrag.h>
#include <SampleDocument.h>
#include <files/Installation.h>

#include <QClipboard>
#include <QDrag>
#include <QImage>
#include <QImageReader>
#include <QInputDialog>
#include <QLabel>
#include <QMimeData>
#include <QMouseEvent>

#include <filesystem>

using namespace platform;
namespace fs = std::filesystem;

namespace {

/// Three pages: an upright one, one that is turned, and a small one of which only a part is shown.
std::string threePages() {
    render::DocumentBytes bytes;
    bytes.add("<< /Type /Catalog /Pages 2 0 R >>");
    bytes.add("<< /Type /Pages /Count 3 /Kids [3 0 R 4 0 R 5 0 R] >>");
    bytes.add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 600 800] /Contents 6 0 R >>");
    bytes.add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 600 800] /Rotate 90 /Contents 6 0 R >>");
    bytes.add("<< /Type /Page /Parent 2 0 R /MediaBox [0 0 600 800] /CropBox [100 100 400 300] /Contents 6 0 R >>");
    bytes.addStream("0 0 1 rg 200 200 100 50 re f");
    return bytes.bytes();
}

class Sample : public testing_support::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        write("three.pdf", threePages());
        window->pane().show(at(1), model()); // "Page of Pages", on every page
        settle();
    }
    QImage preview() {
        const auto url = model().imprintFileAtURLWithIndex(NSURL::fileURLWithPath(files::samplePage()), current(), 0);
        return url ? QImage(QString::fromStdString(url->path().string())) : QImage();
    }
    /// In points, as the resolution of the picture says.
    static QSize points(const QImage& picture) {
        return {qRound(picture.width() / (picture.dotsPerMeterX() * 0.0254) * 72),
                qRound(picture.height() / (picture.dotsPerMeterY() * 0.0254) * 72)};
    }
    void chooseSample(const std::string& name) {
        answering({take(path(name))}, [&] { choose("Choose…"); });
    }
    QSize supplied() const { return QImageReader(QString::fromStdString(files::samplePage().string())).size(); }
};

TEST_F(Sample, IsTheDocumentThatTheUserChoseAndItsPagesAreSteppedThrough) {
    EXPECT_EQ(preview().size(), supplied());
    chooseSample("three.pdf");
    EXPECT_EQ(points(preview()), QSize(600, 800));
    EXPECT_EQ(status(), "Sample: three.pdf, page 1 of 3");
    choose("Next Page");
    EXPECT_EQ(points(preview()), QSize(800, 600)) << "as it is shown";
    EXPECT_EQ(status(), "Sample: three.pdf, page 2 of 3");
    choose("Next Page");
    EXPECT_EQ(points(preview()), QSize(300, 200));
    choose("Next Page"); // beyond the last one
    EXPECT_EQ(points(preview()), QSize(300, 200));
    choose("Previous Page");
    EXPECT_EQ(points(preview()), QSize(800, 600));
    choose("Use Supplied Sample");
    EXPECT_EQ(preview().size(), supplied());
}

TEST_F(Sample, ShowsWhatIsOnThePage) {
    if (std::system("command -v pdftoppm >/dev/null") != 0)
        GTEST_SKIP() << "pages are blank without pdftoppm";
    chooseSample("three.pdf");
    const auto page = preview();
    const double scale = page.width() / 600.0;
    EXPECT_EQ(QColor(page.pixel(qRound(250 * scale), qRound((800 - 225) * scale))), QColor(Qt::blue));
    EXPECT_EQ(QColor(page.pixel(qRound(50 * scale), qRound(50 * scale))), QColor(Qt::white));
}

TEST_F(Sample, HasTheSizesOfItsPagesWhereNothingDrawsThem) {
    const auto former = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    chooseSample("three.pdf");
    choose("Next Page");
    const auto page = preview();
    qputenv("PATH", former);
    EXPECT_EQ(points(page), QSize(800, 600));
    EXPECT_EQ(QColor(page.pixel(page.width() / 2, page.height() / 2)), QColor(Qt::white));
    EXPECT_TRUE(session->isSampleStamped());
}

TEST_F(Sample, BearsNoStampOnAPageThatIsNotChosen) {
    window->pane().show(at(0), model()); // on the first page only
    chooseSample("three.pdf");
    EXPECT_TRUE(session->isSampleStamped());
    choose("Next Page");
    EXPECT_FALSE(session->isSampleStamped());
    EXPECT_EQ(status(), "Sample: three.pdf, page 2 of 3, which is not stamped");
    choose("Use Supplied Sample");
    EXPECT_TRUE(session->isSampleStamped());
}

TEST_F(Sample, IsThereAgainAtTheNextStart) {
    chooseSample("three.pdf");
    choose("Next Page");
    window->close();
    close();
    open();
    EXPECT_EQ(points(preview()), QSize(800, 600));
    choose("Use Supplied Sample");
    window->close();
    close();
    open();
    EXPECT_EQ(preview().size(), supplied());
}

TEST_F(Sample, ThatIsGoneGivesWayToTheSuppliedOneAndSaysSo) {
    chooseSample("three.pdf");
    fs::remove(path("three.pdf"));
    EXPECT_EQ(preview().size(), supplied());
    EXPECT_EQ(status(), "The supplied sample is shown instead of “" + app::toQt(path("three.pdf").u16string()) +
                            "”: The file does not exist.");
    // And where it went between two starts.
    write("three.pdf", threePages());
    chooseSample("three.pdf");
    window->close();
    close();
    fs::remove(path("three.pdf"));
    open();
    EXPECT_EQ(preview().size(), supplied());
    EXPECT_TRUE(status().startsWith("The supplied sample is shown instead of")) << status().toStdString();
    EXPECT_FALSE(defaults->stringForKey(app::SampleDocument::fileKey));
}

TEST_F(Sample, ThatWasWrittenAnewShowsItsNewPages) {
    chooseSample("three.pdf");
    choose("Next Page");
    choose("Next Page");
    write("three.pdf", render::document(1, "/MediaBox [0 0 400 400]", ""));
    fs::last_write_time(path("three.pdf"), fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(points(preview()), QSize(400, 400));
    EXPECT_EQ(session->sample()->page(), 1U);
}

TEST_F(Sample, MayBeAPicture) {
    QImage picture(300, 100, QImage::Format_RGB32);
    picture.fill(Qt::yellow);
    ASSERT_TRUE(picture.save(QString::fromStdString(path("scan.png").string())));
    chooseSample("scan.png");
    EXPECT_EQ(preview().size(), QSize(300, 100));
    EXPECT_EQ(status(), "Sample: scan.png, page 1 of 1");
    // One whose beginning is all there is.
    write("broken.png", contents("scan.png").substr(0, 60));
    chooseSample("broken.png");
    EXPECT_EQ(preview().size(), supplied());
}

TEST_F(Sample, MayBeAFileOfSeveralScannedPages) {
    // The second page is stored on its side, with a red mark in the corner that is shown at the top right.
    ASSERT_EQ(std::system(("cd '" + folder.path().toStdString() +
                           "' && convert -units PixelsPerInch -density 72 -size 300x200 xc:yellow first.tif"
                           " && convert -units PixelsPerInch -density 72 -size 400x100 xc:blue -fill red"
                           " -draw 'rectangle 0,0 20,20' -orient RightTop second.tif"
                           " && convert first.tif second.tif scans.tif")
                              .c_str()),
              0);
    chooseSample("scans.tif");
    EXPECT_EQ(status(), "Sample: scans.tif, page 1 of 2");
    EXPECT_EQ(preview().size(), QSize(300, 200));
    EXPECT_EQ(QColor(preview().pixel(2, 2)), QColor(Qt::yellow));
    choose("Next Page");
    EXPECT_EQ(status(), "Sample: scans.tif, page 2 of 2");
    EXPECT_EQ(preview().size(), QSize(100, 400));
    EXPECT_EQ(QColor(preview().pixel(95, 5)), QColor(Qt::red));
    EXPECT_EQ(QColor(preview().pixel(5, 395)), QColor(Qt::blue));
    window->close();
    close();
    open();
    EXPECT_EQ(preview().size(), QSize(100, 400)) << "it is remembered";
}

class LockedSample : public Sample {
protected:
    void SetUp() override {
        Sample::SetUp();
        ASSERT_EQ(std::system(("qpdf --encrypt Schlüssel owner 256 -- '" + path("three.pdf").string() + "' '" +
                               path("locked.pdf").string() + "'")
                                  .c_str()),
                  0);
    }
    /// Types into the question, and keeps what it says.
    static std::function<void(QWidget&)> type(const QString& password, QString* said = nullptr) {
        return [=](QWidget& modal) {
            auto* question = qobject_cast<QInputDialog*>(&modal);
            ASSERT_TRUE(question);
            EXPECT_EQ(question->textEchoMode(), QLineEdit::Password);
            if (said)
                *said = question->labelText();
            question->setTextValue(password);
            question->accept();
        };
    }
};

TEST_F(LockedSample, AsksForItsPassword) {
    QString first;
    QString second;
    answering({take(path("locked.pdf")), type("wrong", &first), type("Schlüssel", &second)},
              [&] { choose("Choose…"); });
    EXPECT_EQ(first, "Password for locked.pdf:\nThe document needs a password.");
    EXPECT_EQ(second, "Password for locked.pdf:\nThe password is wrong.");
    EXPECT_EQ(status(), "Sample: locked.pdf, page 1 of 3");
    const auto page = preview();
    EXPECT_EQ(points(page), QSize(600, 800));
    if (std::system("command -v pdftoppm >/dev/null") == 0) {
        const double scale = page.width() / 600.0;
        EXPECT_EQ(QColor(page.pixel(qRound(250 * scale), qRound((800 - 225) * scale))), QColor(Qt::blue));
    }
    choose("Next Page");
    EXPECT_EQ(points(preview()), QSize(800, 600));
}

TEST_F(LockedSample, KeepsThePasswordNoLongerThanTheProgramRuns) {
    answering({take(path("locked.pdf")), type("Schlüssel")}, [&] { choose("Choose…"); });
    preview();
    // Written anew meanwhile, it is read with the same one.
    fs::last_write_time(path("locked.pdf"), fs::file_time_type::clock::now() + std::chrono::hours(1));
    EXPECT_EQ(points(preview()), QSize(600, 800));
    window->close();
    close();
    open();
    EXPECT_EQ(preview().size(), supplied());
    EXPECT_TRUE(status().endsWith("The document needs a password.")) << status().toStdString();
}

TEST_F(LockedSample, LeavesTheFormerOneWhereNoPasswordIsGiven) {
    chooseSample("three.pdf");
    choose("Next Page");
    answering({take(path("locked.pdf")), [](QWidget& modal) { qobject_cast<QDialog*>(&modal)->reject(); }},
              [&] { choose("Choose…"); });
    EXPECT_EQ(points(preview()), QSize(800, 600));
}

TEST_F(Sample, IsRefusedWithTheReasonWhereItCannotBeOne) {
    chooseSample("three.pdf");
    write("notes.txt", "my notes");
    QString said;
    answering({take(path("notes.txt")), press("OK", &said)}, [&] { choose("Choose…"); });
    EXPECT_TRUE(
        said.endsWith("cannot be the sample: Only PDF documents and PNG, JPEG and TIFF pictures can be the sample."))
        << said.toStdString();
    write("broken.tif", std::string("II*\0", 4) + "my notes");
    answering({take(path("broken.tif")), press("OK", &said)}, [&] { choose("Choose…"); });
    EXPECT_TRUE(said.endsWith("cannot be the sample: The file is damaged.")) << said.toStdString();
    EXPECT_EQ(points(preview()), QSize(600, 800)) << "the former one stays";
}

TEST_F(Sample, IsSteppedThroughWithKeysInThePreviewToo) {
    chooseSample("three.pdf");
    const auto& pane = window->pane().pane();
    (*pane.classTable()->action(u"onPreview:"))(window->pane().pane(), outlet<NSObject>(u"previewBtn"));
    settle();
    auto* popover = QApplication::activePopupWidget();
    ASSERT_TRUE(popover);
    QTest::keyClick(popover, Qt::Key_PageDown, Qt::ControlModifier);
    settle();
    EXPECT_EQ(session->sample()->page(), 2U);
    EXPECT_TRUE(popover->isVisible());
    QTest::keyClick(popover, Qt::Key_PageUp, Qt::ControlModifier);
    settle();
    EXPECT_EQ(session->sample()->page(), 1U);
    popover->close();
    settle();
}

TEST_F(Sample, ThePreviewIsCopiedAsAPictureAndAsAFile) {
    at(1)->setName(u"Page 1/2");
    preview();
    choose("Copy Preview Picture");
    const auto* mime = QApplication::clipboard()->mimeData();
    EXPECT_EQ(qvariant_cast<QImage>(mime->imageData()).size(), supplied());
    ASSERT_EQ(mime->urls().size(), 1);
    const fs::path file = mime->urls().front().toLocalFile().toStdString();
    EXPECT_EQ(file.filename(), "Page 1-2.png");
    EXPECT_EQ(QImageReader(QString::fromStdString(file.string())).format(), "png");
    EXPECT_EQ(fs::status(file.parent_path()).permissions(), fs::perms::owner_all) << "which nobody else reads";
    close();
    EXPECT_FALSE(fs::exists(file)) << "nothing stays behind";
}

/// What a drag carries that begins on a picture of this name in a window of these flags; none where none begins.
QStringList draggedFrom(const char* name, Qt::WindowFlags flags) {
    QWidget around(nullptr, flags);
    around.resize(200, 200);
    auto* picture = new QLabel(&around);
    picture->setObjectName(QString::fromLatin1(name));
    picture->resize(200, 200);
    around.show();
    QApplication::processEvents();
    QStringList carried;
    const auto look = [&] {
        const auto* drag = picture->findChild<QDrag*>();
        if (!drag || !carried.isEmpty())
            return;
        for (const auto& url : drag->mimeData()->urls())
            carried.append(url.fileName());
        EXPECT_TRUE(drag->mimeData()->hasImage());
        QDrag::cancel();
    };
    QTimer running; // a drag runs until it is ended, or at once where the platform knows none
    QObject::connect(&running, &QTimer::timeout, look);
    running.start(1);
    QTest::mousePress(picture, Qt::LeftButton, {}, {50, 50});
    const auto place = picture->mapToGlobal(QPointF(100, 100));
    QMouseEvent moves(QEvent::MouseMove, QPointF(100, 100), place, Qt::NoButton, Qt::LeftButton, {});
    QApplication::sendEvent(picture, &moves);
    look();
    QTest::mouseRelease(picture, Qt::LeftButton, {}, {100, 100});
    return carried;
}

TEST_F(Sample, ThePictureOfAPreviewThatWasTornOffIsDraggedOutAsAFile) {
    preview();
    EXPECT_EQ(draggedFrom("imageView", Qt::Window), QStringList{"Page of Pages.png"});
    EXPECT_TRUE(draggedFrom("imageView", Qt::Popup | Qt::FramelessWindowHint).isEmpty()) << "which a drag tears off";
    EXPECT_TRUE(draggedFrom("another", Qt::Window).isEmpty());
}

} // namespace
