// SPDX-License-Identifier: MIT
// Stamping documents from the window: what is asked on the way, and what is told at the end.

#include "../render/Documents.h"
#include "../render/Signing.h"

#include <StampRun.h>

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>
#include <QProgressDialog>
#include <QTimer>
#include <QWidget>

using namespace render;

namespace {

const char kPage[] = "/MediaBox [0 0 300 200]";

class StampRun : public ::testing::Test {
protected:
    /// Answers each dialog that comes up while `work` goes on, in order.
    template <class Work>
    auto answering(std::vector<std::function<void(QWidget&)>> answers, const Work& work) {
        QTimer poll;
        std::size_t next = 0;
        QObject::connect(&poll, &QTimer::timeout, [&] {
            auto* dialog = QApplication::activeModalWidget();
            if (!dialog || dialog->objectName() == "stamping")
                return;
            // One that nobody expects must not wait for ever.
            if (next < answers.size()) {
                answers[next++](*dialog);
            } else {
                ADD_FAILURE() << "one dialog too many";
                dialog->close();
            }
        });
        poll.start(1);
        auto result = work();
        EXPECT_EQ(next, answers.size());
        return result;
    }
    app::StampSummary stamp(const std::vector<std::string>& names,
                            std::vector<std::function<void(QWidget&)>> answers = {}) {
        std::vector<std::filesystem::path> inputs;
        for (const auto& name : names)
            inputs.push_back(folder / name);
        return answering(std::move(answers), [&] { return app::stampDocuments(&window, inputs, with, false); });
    }
    static std::function<void(QWidget&)> press(QMessageBox::StandardButton button, QString* text = nullptr) {
        return [=](QWidget& dialog) {
            auto* box = qobject_cast<QMessageBox*>(&dialog);
            ASSERT_TRUE(box);
            if (text)
                *text = box->text() + '\n' + box->informativeText();
            box->button(button)->click();
        };
    }
    static std::function<void(QWidget&)> type(const QString& password, QString* label = nullptr) {
        return [=](QWidget& dialog) {
            auto* input = qobject_cast<QInputDialog*>(&dialog);
            ASSERT_TRUE(input);
            EXPECT_EQ(input->textEchoMode(), QLineEdit::Password);
            if (label)
                *label = input->labelText();
            input->setTextValue(password);
            input->accept();
        };
    }
    std::string textOf(const std::string& name, const std::string& options = {}) {
        return run("pdftotext -q " + options + " " + quoted(folder / name) + " -").output;
    }

    Folder folder;
    QWidget window;
    std::shared_ptr<support::PlainConfiguration> with = configuration(u"Stamp");
};

TEST_F(StampRun, RunningNumbersCountOnThroughAllDocuments) {
    writeFile(folder / "a.pdf", document(3, kPage, ""));
    writeFile(folder / "b.pdf", "no document");
    writeFile(folder / "c.pdf", document(2, kPage, ""));
    with->setTitle({std::u16string(u"%runningNumber%")});
    const auto summary = stamp({"a.pdf", "b.pdf", "c.pdf"});
    EXPECT_EQ(summary.done.size(), 2U);
    EXPECT_EQ(summary.failed.size(), 1U);
    EXPECT_EQ(textOf("a-stamped.pdf"), "1\n\n\f2\n\n\f3\n\n\f");
    EXPECT_EQ(textOf("c-stamped.pdf"), "4\n\n\f5\n\n\f");
}

TEST_F(StampRun, TheSummaryTellsRemarksAndWhereTheResultsAre) {
    writeFile(folder / "a.pdf", document(1, kPage, ""));
    writeFile(folder / "b.pdf", document(1, kPage, ""));
    auto summary = stamp({"a.pdf", "b.pdf"});
    EXPECT_EQ(app::tellSummary(&window, summary).toStdString(),
              "2 documents stamped. Stamped: " + folder.path().string());
    // A face that the machine lacks.
    with->setTitle({support::fontRun(u"NoSuchFace-Bold", 12), std::u16string(u"Stamp")});
    summary = stamp({"a.pdf", "b.pdf"});
    QString text;
    const auto line =
        answering({press(QMessageBox::Ok, &text)}, [&] { return app::tellSummary(&window, summary); }).toStdString();
    EXPECT_TRUE(text.startsWith("The documents were stamped, with remarks.\na-stamped-2.pdf: ")) << text.toStdString();
    EXPECT_TRUE(text.contains("NoSuchFace-Bold")) << text.toStdString();
    EXPECT_TRUE(text.contains("b-stamped-2.pdf: ")) << text.toStdString();
    EXPECT_EQ(line, "2 documents stamped. Stamped: " + folder.path().string());
    // Beside a failure the results are told as well.
    with = configuration(u"Stamp");
    writeFile(folder / "no.pdf", "no document");
    summary = stamp({"no.pdf", "a.pdf"});
    answering({press(QMessageBox::Ok, &text)}, [&] { return app::tellSummary(&window, summary); });
    EXPECT_EQ(text.toStdString(), "1 of 2 documents could not be stamped.\nno.pdf: This is no PDF, PNG, JPEG or "
                                  "TIFF file.\nStamped: " +
                                      folder.path().string());
}

TEST_F(StampRun, AnEncryptedDocumentAsksForItsPasswordUntilItFits) {
    writeFile(folder / "plain.pdf", document(1, kPage, ""));
    ASSERT_EQ(
        run("qpdf --encrypt secret owner 256 -- " + quoted(folder / "plain.pdf") + " " + quoted(folder / "locked.pdf"))
            .status,
        0);
    QString first;
    QString second;
    auto summary = stamp({"locked.pdf"}, {type("guess", &first), type("secret", &second)});
    EXPECT_EQ(first, "Password for locked.pdf:\nThe document needs a password.");
    EXPECT_EQ(second, "Password for locked.pdf:\nThe password is wrong.");
    ASSERT_EQ(summary.done.size(), 1U);
    EXPECT_EQ(textOf("locked-stamped.pdf", "-upw secret"), "Stamp\n\n\f");
    // Without an answer it fails, and the others are done.
    summary = stamp({"locked.pdf", "plain.pdf"}, {[](QWidget& dialog) { dialog.close(); }});
    EXPECT_EQ(summary.failed.size(), 1U);
    EXPECT_EQ(summary.done.size(), 1U);
}

TEST_F(StampRun, WhatIsAskedStandsAboveTheProgressAndTakesTheKeys) {
    writeFile(folder / "a.pdf", document(1, kPage, ""));
    ASSERT_EQ(
        run("qpdf --encrypt secret owner 256 -- " + quoted(folder / "a.pdf") + " " + quoted(folder / "b.pdf")).status,
        0);
    const auto isAbove = [](QWidget& dialog) {
        const auto* progress = qobject_cast<QProgressDialog*>(dialog.parentWidget());
        ASSERT_TRUE(progress) << "which would be in front of a question of any other";
        EXPECT_TRUE(progress->isVisible()) << "so that it does not come up later";
        type(QStringLiteral("secret"))(dialog);
    };
    EXPECT_EQ(stamp({"b.pdf"}, {isAbove}).done.size(), 1U);
}

TEST_F(StampRun, ASignedDocumentIsStampedOnlyAfterAsking) {
    const Folder keys;
    writeFile(folder / "signed.pdf", signedDocument(keys));
    auto summary = stamp({"signed.pdf"}, {press(QMessageBox::No)});
    EXPECT_EQ(summary.failed.size(), 1U);
    EXPECT_EQ(folder.names(), std::vector<std::string>{"signed.pdf"});
    summary = stamp({"signed.pdf"}, {press(QMessageBox::Yes)});
    EXPECT_EQ(summary.done.size(), 1U);
    EXPECT_NE(run("pdfsig " + quoted(folder / "signed-stamped.pdf")).output.find("Signature is Valid."),
              std::string::npos);
}

TEST_F(StampRun, CancellingLeavesTheRestAsItIs) {
    writeFile(folder / "a.pdf", document(1, kPage, ""));
    ASSERT_EQ(
        run("qpdf --encrypt secret owner 256 -- " + quoted(folder / "a.pdf") + " " + quoted(folder / "b.pdf")).status,
        0);
    writeFile(folder / "c.pdf", document(1, kPage, ""));
    // The question in the middle is the moment to cancel the whole.
    const auto summary = stamp({"a.pdf", "b.pdf", "c.pdf"}, {[this](QWidget& dialog) {
                                   auto* progress = window.findChild<QProgressDialog*>("stamping");
                                   ASSERT_TRUE(progress);
                                   progress->cancel();
                                   dialog.close();
                               }});
    EXPECT_TRUE(summary.cancelled);
    EXPECT_EQ(summary.done.size(), 1U);
    EXPECT_TRUE(summary.failed.empty());
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"a-stamped.pdf", "a.pdf", "b.pdf", "c.pdf"}));
    EXPECT_EQ(app::tellSummary(&window, summary).toStdString(),
              "Cancelled: 1 of 3 documents were stamped. Stamped: " + (folder / "a-stamped.pdf").string());
}

} // namespace
