// SPDX-License-Identifier: MIT
// Stamping from the window's menus: the check before it, the documents stamped last, and where results go.

#include "WindowTest.h"

#include "../render/Documents.h"

#include <RecentDocuments.h>

#include <QDialogButtonBox>
#include <QListWidget>
#include <QMimeData>
#include <QPushButton>

#include <filesystem>

using namespace platform;
namespace fs = std::filesystem;

namespace {

constexpr char kPage[] = "/MediaBox [0 0 595 842]";

class Stamping : public testing_support::WindowTest {
protected:
    void SetUp() override {
        WindowTest::SetUp();
        window->pane().show(at(1), model());
        settle();
        write("a.pdf", render::document(2, kPage, ""));
        write("b.pdf", render::document(1, kPage, ""));
        write("none.pdf", "no document");
    }
    void drop(const std::vector<std::string>& names) {
        QMimeData mime;
        QList<QUrl> urls;
        for (const auto& name : names)
            urls.append(QUrl::fromLocalFile(QString::fromStdString(path(name).string())));
        mime.setUrls(urls);
        QDragEnterEvent enters({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(window.get(), &enters);
        QDropEvent drops({5, 5}, Qt::CopyAction, &mime, Qt::LeftButton, {});
        QApplication::sendEvent(window.get(), &drops);
        settle(); // stamping waits until the one who drags has his answer
    }
    /// Presses this button of the list of remarks; keeps what it says.
    static std::function<void(QWidget&)> inList(QDialogButtonBox::ButtonRole role, QStringList* lines = nullptr) {
        return [=](QWidget& modal) {
            ASSERT_EQ(modal.objectName(), "preflight");
            auto* list = modal.findChild<QListWidget*>("remarks");
            for (int row = 0; lines && row < list->count(); ++row)
                lines->append(list->item(row)->text());
            auto* buttons = modal.findChild<QDialogButtonBox*>();
            for (auto* button : buttons->buttons())
                if (buttons->buttonRole(button) == role)
                    return button->click();
            ADD_FAILURE() << "no such button";
            modal.close();
        };
    }
    bool is(const std::string& name) const { return fs::exists(path(name)); }
    QMenu& recent() { return *window->findChild<app::RecentDocuments*>(); }
    QStringList titles() {
        QStringList all;
        for (auto* action : recent().actions())
            if (!action->isSeparator())
                all.append(action->text());
        return all;
    }
};

TEST_F(Stamping, WithoutAnythingToSayGoesOnAtOnce) {
    answering({}, [&] { drop({"a.pdf", "b.pdf"}); });
    EXPECT_TRUE(is("a-stamped.pdf"));
    EXPECT_TRUE(is("b-stamped.pdf"));
}

TEST_F(Stamping, ShowsInOneListWhatItWouldComeUpon) {
    std::get<std::shared_ptr<host::ImprinterFont>>(at(1)->titleTokens()->front())->setFontSize(120);
    QStringList lines;
    answering({inList(QDialogButtonBox::RejectRole, &lines)}, [&] { drop({"a.pdf", "none.pdf", "gone.pdf"}); });
    EXPECT_EQ(lines,
              (QStringList{"a.pdf: The stamp is larger than page 1 and 1 other.",
                           "none.pdf: This is no PDF, PNG, JPEG or TIFF file.", "gone.pdf: The file does not exist."}));
    EXPECT_FALSE(is("a-stamped.pdf")) << "cancelled before anything was stamped";
}

TEST_F(Stamping, GoesOnWhereTheUserSaysSoAndTellsNoWarningTwice) {
    std::get<std::shared_ptr<host::ImprinterFont>>(at(1)->titleTokens()->front())->setFullFontName(u"NoSuchFace");
    QStringList lines;
    answering({inList(QDialogButtonBox::AcceptRole, &lines)}, [&] { drop({"a.pdf"}); });
    ASSERT_EQ(lines.size(), 1);
    EXPECT_TRUE(lines.front().contains("NoSuchFace")) << lines.front().toStdString();
    EXPECT_TRUE(is("a-stamped.pdf"));
    EXPECT_TRUE(status().startsWith("Stamped: ")) << status().toStdString();
}

TEST_F(Stamping, OffersNoWayOnWhereNothingCanBeStamped) {
    answering({[&](QWidget& modal) {
                  auto* buttons = modal.findChild<QDialogButtonBox*>();
                  ASSERT_TRUE(buttons);
                  EXPECT_EQ(buttons->buttons().size(), 1);
                  buttons->buttons().front()->click();
              }},
              [&] { drop({"none.pdf"}); });
    EXPECT_FALSE(is("none-stamped.pdf"));
}

TEST_F(Stamping, AnEncryptedDocumentIsListedAndAskedForLater) {
    ASSERT_EQ(std::system(("qpdf --encrypt secret owner 256 -- '" + path("a.pdf").string() + "' '" +
                           path("locked.pdf").string() + "'")
                              .c_str()),
              0);
    QStringList lines;
    answering({inList(QDialogButtonBox::AcceptRole, &lines), [](QWidget& modal) { modal.close(); }, press("OK")},
              [&] { drop({"locked.pdf"}); });
    EXPECT_EQ(lines, QStringList{"locked.pdf: The document needs a password."});
}

TEST_F(Stamping, FromTheMenuAsksWhereTheCopyOfOneDocumentGoes) {
    answering({take(path("a.pdf")), take(path("out.pdf"))}, [&] { choose("Stamp Document…"); });
    EXPECT_TRUE(is("out.pdf"));
    EXPECT_EQ(status(), "Stamped: " + app::toQt(path("out.pdf").u16string()));
}

TEST_F(Stamping, FromTheMenuStampsTheOriginalWhereTheConfigurationSaysSo) {
    at(1)->setDuplicateRecord(static_cast<host::NSInteger>(host::DuplicateRecord::inPlace));
    const auto before = contents("a.pdf");
    QString said;
    answering({take(path("a.pdf")), press("No", &said)}, [&] { choose("Stamp Document…"); });
    EXPECT_EQ(said, "Stamp the original file? It is replaced by its stamped version.");
    EXPECT_EQ(contents("a.pdf"), before);
    answering({take(path("a.pdf")), press("Yes")}, [&] { choose("Stamp Document…"); });
    EXPECT_NE(contents("a.pdf"), before);
    EXPECT_FALSE(is("a-stamped.pdf"));
}

TEST_F(Stamping, AWriteProtectedDocumentIsCopiedAndItsOriginalLeftAsItIs) {
    fs::permissions(path("a.pdf"), fs::perms(0444));
    answering({}, [&] { drop({"a.pdf"}); });
    EXPECT_TRUE(is("a-stamped.pdf"));

    at(1)->setDuplicateRecord(static_cast<host::NSInteger>(host::DuplicateRecord::inPlace));
    const auto before = contents("a.pdf");
    QStringList lines;
    answering({inList(QDialogButtonBox::RejectRole, &lines)}, [&] { drop({"a.pdf", "b.pdf"}); });
    EXPECT_EQ(lines, QStringList{"a.pdf: The file is write-protected."});
    EXPECT_EQ(contents("a.pdf"), before);
}

TEST_F(Stamping, RemembersTheDocumentsStampedLastAndStampsThemAgain) {
    EXPECT_FALSE(recent().menuAction()->isEnabled());
    drop({"a.pdf", "b.pdf"});
    answering({inList(QDialogButtonBox::RejectRole)}, [&] { drop({"none.pdf"}); });
    EXPECT_EQ(titles(), (QStringList{"a.pdf", "b.pdf", "&Clear List"})) << "what was not stamped is not among them";
    // Over starts, with the choice of that time.
    window->close();
    close();
    open();
    EXPECT_EQ(titles(), (QStringList{"a.pdf", "b.pdf", "&Clear List"}));
    window->pane().show(at(0), model());
    fs::remove(path("b-stamped.pdf"));
    recent().actions()[1]->trigger();
    settle();
    EXPECT_TRUE(is("b-stamped.pdf"));
    EXPECT_EQ(titles(), (QStringList{"b.pdf", "a.pdf", "&Clear List"}));
    choose("Clear List");
    EXPECT_FALSE(recent().menuAction()->isEnabled());
    EXPECT_TRUE(app::RecentDocuments::files().isEmpty());
}

TEST_F(Stamping, ForgetsARecentDocumentThatIsGone) {
    drop({"a.pdf"});
    fs::remove(path("a.pdf"));
    QString said;
    answering({press("OK", &said)}, [&] { recent().actions().front()->trigger(); });
    EXPECT_EQ(said, "There is no file “" + app::toQt(path("a.pdf").u16string()) + "”.");
    EXPECT_TRUE(app::RecentDocuments::files().isEmpty());
}

TEST_F(Stamping, RemembersTenDocumentsAndTellsThoseOfOneNameApart) {
    for (int i = 0; i < 12; ++i)
        window->findChild<app::RecentDocuments*>()->add({"/some/folder" + QString::number(i) + "/R&D.pdf"});
    const auto all = titles();
    ASSERT_EQ(all.size(), 11);
    EXPECT_EQ(all.front(), "R&&D.pdf — folder11");
    EXPECT_EQ(all[9], "R&&D.pdf — folder2");
}

} // namespace
