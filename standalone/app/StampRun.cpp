// SPDX-License-Identifier: MIT
#include "StampRun.h"

#include "DocumentsProgress.h"
#include "HostBundle.h"
#include "Sentences.h"

#include <engine/Naming.h>

#include <QApplication>
#include <QInputDialog>
#include <QMessageBox>

namespace app {

namespace fs = std::filesystem;

namespace {

constexpr int shownRemarks = 10;

struct Task {
    fs::path input;
    fs::path output;
};

QString named(const fs::path& path) {
    return shown(path.filename());
}

/// Asks for what a document lacks to be stamped: a password, or leave to add to what was signed. False where there is
/// nothing to ask or no answer.
bool askFor(DocumentsProgress& progress, const engine::Outcome& outcome, engine::StampJob& job) {
    const bool tried = !job.password.empty();
    const bool isSigned = outcome.code == engine::Code::isSigned && !job.allowSigned;
    if (!isSigned && outcome.code != engine::Code::encrypted && outcome.code != engine::Code::notPermitted)
        return false;
    // It would come up by itself after a while, over the question, and take the keys from it.
    QMetaObject::invokeMethod(&progress, "forceShow");
    const auto title = progress.windowTitle();
    if (isSigned) {
        job.allowSigned =
            QMessageBox::question(
                &progress, title,
                text(u"%@ is signed. Stamp it all the same? What was signed stays valid.", {named(job.input)}),
                QMessageBox::Yes | QMessageBox::No, QMessageBox::No) == QMessageBox::Yes;
        return job.allowSigned;
    }
    bool given = false;
    const auto password = QInputDialog::getText(
        &progress, title, text(u"Password for %@:", {named(job.input)}) + u'\n' + sentenceOf(outcome, tried),
        QLineEdit::Password, {}, &given);
    job.password = password.toStdString();
    return given;
}

StampSummary run(QWidget* parent, const std::vector<Task>& tasks,
                 const std::shared_ptr<host::ImprinterConfiguration>& configuration, bool inPlace) {
    StampSummary summary;
    summary.all = tasks.size();
    DocumentsProgress progress(parent, text(u"Stamp Document"), tasks.size());
    const bool counts = tasks.size() > 1 && engine::usesRunningNumber({configuration});
    std::size_t nextNumber = 1;
    for (const auto& [input, output] : tasks) {
        progress.begin(input);
        engine::StampJob job;
        job.input = input;
        job.output = output;
        job.inPlace = inPlace;
        job.mayReplace = inPlace;
        job.configurations = {configuration};
        job.firstNumber = nextNumber;
        job.progress = [&](std::size_t pages, std::size_t all) { return progress.goesOn(pages, all); };
        engine::Outcome outcome{engine::Code::cancelled, {}, input, {}, 0};
        while (!progress.wasCanceled()) {
            outcome = engine::stampFile(job);
            if (outcome || !askFor(progress, outcome, job))
                break;
        }
        summary.cancelled = outcome.code == engine::Code::cancelled || (!outcome && progress.wasCanceled());
        if (summary.cancelled)
            break;
        if (counts) {
            // The document may be its own output by now, which has as many pages.
            nextNumber += engine::countPages(job);
        }
        if (outcome)
            summary.inputs.push_back(input);
        (outcome ? summary.done : summary.failed).push_back(std::move(outcome));
    }
    return summary;
}

/// The folders that results went to, each once.
QString placesOf(const StampSummary& summary) {
    QStringList places;
    for (const auto& outcome : summary.done) {
        std::error_code none;
        const auto place = shown(fs::absolute(outcome.path, none).parent_path());
        if (!places.contains(place))
            places.append(place);
    }
    return places.join(QStringLiteral(", "));
}

} // namespace

StampSummary stampDocuments(QWidget* parent, const std::vector<fs::path>& inputs,
                            const std::shared_ptr<host::ImprinterConfiguration>& configuration, bool inPlace) {
    std::vector<Task> tasks;
    std::set<fs::path> taken;
    for (const auto& input : inputs) {
        tasks.push_back({input, inPlace ? input : engine::nameOfDuplicate(input, "-stamped", taken)});
        taken.insert(tasks.back().output);
    }
    return run(parent, tasks, configuration, inPlace);
}

StampSummary stampDocument(QWidget* parent, const fs::path& input, const fs::path& output,
                           const std::shared_ptr<host::ImprinterConfiguration>& configuration) {
    return run(parent, {{input, output}}, configuration, false);
}

QString tellSummary(QWidget* parent, const StampSummary& summary, const std::vector<engine::Warning>& told) {
    const auto all = summary.done.size() + summary.failed.size();
    QStringList remarks;
    const auto remark = [&remarks](const engine::Outcome& outcome, const QString& sentence) {
        if (remarks.size() < shownRemarks)
            remarks.append(named(outcome.path) + QStringLiteral(": ") + sentence);
        else if (remarks.size() == shownRemarks)
            remarks.append(QStringLiteral("…"));
    };
    for (const auto& outcome : summary.failed)
        remark(outcome, sentenceOf(outcome));
    for (const auto& outcome : summary.done)
        for (const auto& warning : outcome.warnings)
            if (std::find(told.begin(), told.end(), warning) == told.end())
                remark(outcome, sentenceOf(warning));
    QString line;
    if (summary.cancelled)
        line = summary.all > 1 ? text(u"Cancelled: %@ of %@ documents were stamped.",
                                      {written(summary.done.size()), written(summary.all)})
                               : text(u"Cancelled.");
    else if (summary.failed.empty() && all > 1)
        line = text(u"%@ documents stamped.", {written(all)});
    if (!summary.done.empty())
        line += (line.isEmpty() ? QString() : QStringLiteral(" ")) + text(u"Stamped:") + u' ' +
                (all == 1 ? shown(summary.done.front().path) : placesOf(summary));
    if (remarks.isEmpty())
        return line;
    if (!line.isEmpty())
        remarks.append(line);
    const bool failed = !summary.failed.empty();
    QMessageBox box(failed ? QMessageBox::Warning : QMessageBox::Information, parent->window()->windowTitle(), {},
                    QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.setText(
        !failed    ? text(u"The documents were stamped, with remarks.")
        : all == 1 ? text(u"The document could not be stamped.")
                   : text(u"%@ of %@ documents could not be stamped.", {written(summary.failed.size()), written(all)}));
    box.setInformativeText(remarks.join(u'\n'));
    box.exec();
    return line;
}

} // namespace app
