// SPDX-License-Identifier: MIT
#pragma once

#include <Foundation/dispatch.h>

#include <algorithm>
#include <vector>

namespace testing_support {

/// A main queue whose clock stands still until a test moves it.
class FakeQueue final : public platform::MainQueue {
public:
    void async(Block block) override { after(0, std::move(block)); }
    void after(double seconds, Block block) override {
        m_entries.push_back({m_now + seconds, m_next++, std::move(block)});
    }

    std::size_t waiting() const { return m_entries.size(); }

    /// Runs what is due within `seconds` from now, also what is queued meanwhile.
    void advance(double seconds) {
        const double until = m_now + seconds;
        for (;;) {
            const auto due = std::min_element(m_entries.begin(), m_entries.end(), [](const Entry& a, const Entry& b) {
                return std::pair(a.due, a.order) < std::pair(b.due, b.order);
            });
            if (due == m_entries.end() || due->due > until)
                break;
            auto entry = std::move(*due);
            m_entries.erase(due);
            m_now = std::max(m_now, entry.due);
            entry.block();
        }
        m_now = until;
    }

private:
    struct Entry {
        double due;
        int order;
        Block block;
    };
    std::vector<Entry> m_entries;
    double m_now = 0;
    int m_next = 0;
};

} // namespace testing_support
