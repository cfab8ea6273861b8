// SPDX-License-Identifier: MIT
#include "Preflight.h"

#include "DocumentsProgress.h"
#include "HostBundle.h"
#include "Sentences.h"

#include <engine/Stamper.h>

#include <QDialogButtonBox>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

namespace {

/// Whether a question on the way can still have the document stamped.
bool canBeAskedFor(engine::Code code) {
    return code == engine::Code::encrypted || code == engine::Code::notPermitted || code == engine::Code::isSigned;
}

} // namespace

Preflight checkDocuments(QWidget* parent, const std::vector<std::filesystem::path>& inputs,
                         const std::shared_ptr<host::ImprinterConfiguration>& configuration, bool inPlace) {
    Preflight found;
    DocumentsProgress progress(parent, text(u"Check Documents"), inputs.size());
    for (const auto& input : inputs) {
        const auto name = shown(input.filename());
        progress.begin(input);
        engine::StampJob job;
        job.input = input;
        job.dryRun = true;
        job.inPlace = inPlace;
        if (inPlace)
            job.output = input;
        job.configurations = {configuration};
        job.progress = [&](std::size_t pages, std::size_t all) { return progress.goesOn(pages, all); };
        const auto outcome = engine::stampFile(job);
        found.cancelled = progress.wasCanceled();
        if (found.cancelled)
            break;
        const auto remark = [&](const QString& sentence) {
            found.lines.append(name + QStringLiteral(": ") + sentence);
        };
        if (!outcome)
            remark(sentenceOf(outcome));
        for (const auto& warning : outcome.warnings) {
            remark(sentenceOf(warning));
            found.warnings.push_back(warning);
        }
        found.stampable += outcome || canBeAskedFor(outcome.code) ? 1 : 0;
    }
    return found;
}

bool goesOn(QWidget* parent, const Preflight& found) {
    if (found.cancelled || found.lines.isEmpty())
        return !found.cancelled;
    QDialog dialog(parent);
    dialog.setObjectName(QStringLiteral("preflight"));
    dialog.setWindowTitle(text(u"Check Documents"));
    const bool any = found.stampable > 0;
    auto* label =
        new QLabel(any ? text(u"Before anything is stamped:") : text(u"None of the documents can be stamped:"));
    label->setWordWrap(true);
    auto* list = new QListWidget;
    list->setObjectName(QStringLiteral("remarks"));
    list->setAccessibleName(label->text());
    list->setWordWrap(true);
    list->setSpacing(2); // where one remark ends and the next begins
    list->setSelectionMode(QAbstractItemView::NoSelection);
    list->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    list->addItems(found.lines);
    for (int row = 0; row < list->count(); ++row)
        list->item(row)->setToolTip(list->item(row)->text());
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel);
    auto* first = any ? buttons->addButton(text(u"C&ontinue"), QDialogButtonBox::AcceptRole)
                      : buttons->button(QDialogButtonBox::Cancel);
    QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
    QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(label);
    layout->addWidget(list, 1);
    layout->addWidget(buttons);
    first->setDefault(true); // which it can be in a dialog only
    first->setFocus();
    dialog.resize(dialog.fontMetrics().averageCharWidth() * 70, dialog.fontMetrics().height() * 16);
    return dialog.exec() == QDialog::Accepted && any;
}

} // namespace app
