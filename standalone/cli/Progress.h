// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <mutex>
#include <vector>

namespace cli {

/// A bar on the standard error that shows how far a run over many files is; nothing where that is no terminal. For
/// several threads.
class Progress {
public:
    explicit Progress(std::size_t files);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// `share` of the file with this number is done: 0 to 1.
    void tell(std::size_t file, double share);
    /// Makes room for a line of text; the next `tell` shows the bar again.
    void hide();

private:
    void draw();
    void erase();

    std::mutex m_mutex;
    std::vector<double> m_shares;
    double m_sum = 0;
    std::size_t m_done = 0;
    bool m_isTerminal;
    bool m_shown = false;
    std::chrono::steady_clock::time_point m_last{};
};

} // namespace cli
