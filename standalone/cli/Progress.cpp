// SPDX-License-Identifier: MIT
#include "Progress.h"

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>

#include <unistd.h>

namespace cli {

namespace {

constexpr std::size_t kWidth = 40;
constexpr std::chrono::milliseconds kPause{100};

} // namespace

Progress::Progress(std::size_t files) : m_shares(files), m_isTerminal(::isatty(STDERR_FILENO) != 0) {}

Progress::~Progress() {
    erase();
}

void Progress::tell(std::size_t file, double share) {
    if (!m_isTerminal)
        return;
    const std::lock_guard lock(m_mutex);
    share = std::clamp(share, m_shares[file], 1.0);
    m_sum += share - m_shares[file];
    m_done += share == 1 && m_shares[file] < 1 ? 1 : 0;
    m_shares[file] = share;
    const auto now = std::chrono::steady_clock::now();
    if (m_shown && now - m_last < kPause)
        return;
    m_last = now;
    draw();
}

void Progress::hide() {
    const std::lock_guard lock(m_mutex);
    erase();
}

void Progress::draw() {
    const double share = m_sum / static_cast<double>(m_shares.size());
    const auto filled = static_cast<std::size_t>(share * static_cast<double>(kWidth));
    char counts[64];
    std::snprintf(counts, sizeof counts, "%3d %%  %zu of %zu", static_cast<int>(share * 100), m_done, m_shares.size());
    std::cerr << "\r[" + std::string(filled, '#') + std::string(kWidth - filled, ' ') + "] " + counts << std::flush;
    m_shown = true;
}

void Progress::erase() {
    if (!m_shown)
        return;
    std::cerr << "\r\x1b[K" << std::flush;
    m_shown = false;
}

} // namespace cli
