// SPDX-License-Identifier: MIT
#pragma once

#include <QProgressDialog>

#include <filesystem>

namespace app {

/// Shows how far the work on a number of documents is, and cancels it. It comes up when that takes a while.
class DocumentsProgress final : public QProgressDialog {
public:
    DocumentsProgress(QWidget* parent, const QString& title, std::size_t documents);

    /// The next document.
    void begin(const std::filesystem::path& document);
    /// So many of its pages are done; answers whether to go on.
    bool goesOn(std::size_t pages, std::size_t all);

private:
    int m_before = -steps;
    static constexpr int steps = 1000; // of one document
};

} // namespace app
