// SPDX-License-Identifier: MIT
#include "Questions.h"

#include "HostBundle.h"

#include <QDateTime>
#include <QDialogButtonBox>
#include <QFileInfo>
#include <QLocale>
#include <QMessageBox>
#include <QPushButton>
#include <QScreen>

namespace app {

namespace {

/// How much of it there is, and of when.
QString whatIsUnsaved(const store::Unsaved& unsaved) {
    const QFileInfo journal(shown(unsaved.journal));
    const auto when = QLocale().toString(journal.lastModified(), QLocale::ShortFormat);
    if (unsaved.configurations == 0)
        return text(u"Their order was changed, last on %@.", {when});
    return unsaved.configurations == 1
               ? text(u"One configuration was changed, last on %@.", {when})
               : text(u"%@ configurations were changed, last on %@.", {written(unsaved.configurations), when});
}

} // namespace

void fitButtons(QMessageBox& box) {
    constexpr int around = 80; // frame and margins
    auto* buttons = box.findChild<QDialogButtonBox*>();
    if (buttons && buttons->sizeHint().width() + around > box.screen()->availableGeometry().width())
        buttons->setOrientation(Qt::Vertical);
}

Unsaved askAboutUnsaved(QWidget& parent, const store::Unsaved& unsaved) {
    QMessageBox box(QMessageBox::Question, parent.window()->windowTitle(),
                    text(u"Imprinter ended before changes were saved. Take them over?"), QMessageBox::NoButton,
                    &parent);
    box.setTextFormat(Qt::PlainText);
    box.setInformativeText(whatIsUnsaved(unsaved));
    QAbstractButton* take = box.addButton(text(u"&Take Over"), QMessageBox::AcceptRole);
    QAbstractButton* discard = box.addButton(text(u"&Discard"), QMessageBox::DestructiveRole);
    box.addButton(text(u"&Later"), QMessageBox::RejectRole);
    box.setDefaultButton(qobject_cast<QPushButton*>(take));
    fitButtons(box);
    box.exec();
    return box.clickedButton() == take      ? Unsaved::takeOver
           : box.clickedButton() == discard ? Unsaved::discard
                                            : Unsaved::later;
}

QString documentFilter() {
    return text(u"Documents and pictures (*.pdf *.png *.jpg *.jpeg *.tif *.tiff)");
}

} // namespace app
