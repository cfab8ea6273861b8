// SPDX-License-Identifier: MIT
#include "DocumentsProgress.h"

#include "HostBundle.h"

#include <algorithm>

namespace app {

namespace {

constexpr int characters = 40; // of a name; the dialog keeps its width from one to the next
constexpr int margins = 24;

} // namespace

DocumentsProgress::DocumentsProgress(QWidget* parent, const QString& title, std::size_t documents)
    : QProgressDialog(parent) {
    setObjectName(QStringLiteral("stamping"));
    setWindowTitle(title);
    setCancelButtonText(text(u"Cancel"));
    setWindowModality(Qt::WindowModal);
    setMinimumDuration(300);
    setAutoClose(false);
    setAutoReset(false);
    setMinimumWidth(fontMetrics().averageCharWidth() * characters + margins);
    setRange(0, static_cast<int>(documents) * steps);
}

void DocumentsProgress::begin(const std::filesystem::path& document) {
    m_before += steps;
    setLabelText(fontMetrics().elidedText(shown(document.filename()), Qt::ElideMiddle,
                                          fontMetrics().averageCharWidth() * characters));
    setValue(m_before);
}

bool DocumentsProgress::goesOn(std::size_t pages, std::size_t all) {
    setValue(m_before + static_cast<int>(pages * (steps - 1) / std::max<std::size_t>(all, 1)));
    return !wasCanceled();
}

} // namespace app
