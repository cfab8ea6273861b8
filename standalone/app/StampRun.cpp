// SPDX-License-Identifier: MIT
#include "StampRun.h"

#include "HostBundle.h"

#include <engine/Naming.h>

#include <QApplication>
#include <QMessageBox>
#include <QProgressDialog>

namespace app {

namespace fs = std::filesystem;

namespace {

constexpr int steps = 1000; // of one document
constexpr int shownFailures = 10;

struct Task {
    fs::path input;
    fs::path output;
};

QString named(const fs::path& path) {
    return QString::fromStdString(path.filename().string());
}

StampSummary run(QWidget* parent, const std::vector<Task>& tasks,
                 const std::shared_ptr<host::ImprinterConfiguration>& configuration, bool inPlace) {
    StampSummary summary;
    QProgressDialog progress(parent);
    progress.setObjectName(QStringLiteral("stamping"));
    progress.setWindowTitle(text(u"Stamp Document"));
    progress.setCancelButtonText(text(u"Cancel"));
    progress.setWindowModality(Qt::WindowModal);
    progress.setMinimumDuration(300);
    progress.setAutoClose(false);
    progress.setAutoReset(false);
    progress.setRange(0, static_cast<int>(tasks.size()) * steps);
    int before = 0;
    for (const auto& [input, output] : tasks) {
        progress.setLabelText(named(input));
        progress.setValue(before);
        engine::StampJob job;
        job.input = input;
        job.output = output;
        job.inPlace = inPlace;
        job.configurations = {configuration};
        job.progress = [&](std::size_t pages, std::size_t all) {
            progress.setValue(before + static_cast<int>(pages * (steps - 1) / std::max<std::size_t>(all, 1)));
            return !progress.wasCanceled();
        };
        auto outcome = progress.wasCanceled() ? engine::Outcome{engine::Code::cancelled, {}, input, {}, 0}
                                              : engine::stampFile(job);
        summary.cancelled = outcome.code == engine::Code::cancelled;
        if (summary.cancelled)
            break;
        (outcome ? summary.done : summary.failed).push_back(std::move(outcome));
        before += steps;
    }
    return summary;
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

QString tellSummary(QWidget* parent, const StampSummary& summary) {
    const auto all = summary.done.size() + summary.failed.size();
    if (summary.failed.empty()) {
        if (summary.cancelled)
            return text(u"Cancelled.");
        if (all == 1)
            return text(u"Stamped:") + u' ' + QString::fromStdString(summary.done.front().path.string());
        return all == 0 ? QString() : text(u"%@ documents stamped.", {written(all)});
    }
    QStringList reasons;
    for (const auto& outcome : summary.failed) {
        if (reasons.size() == shownFailures) {
            reasons.append(QStringLiteral("…"));
            break;
        }
        reasons.append(named(outcome.path) + QStringLiteral(": ") + QString::fromStdString(outcome.sentence));
    }
    QMessageBox box(QMessageBox::Warning, parent->window()->windowTitle(), {}, QMessageBox::Ok, parent);
    box.setTextFormat(Qt::PlainText);
    box.setText(
        all == 1 ? text(u"The document could not be stamped.")
                 : text(u"%@ of %@ documents could not be stamped.", {written(summary.failed.size()), written(all)}));
    box.setInformativeText(reasons.join(u'\n'));
    box.exec();
    return {};
}

} // namespace app
