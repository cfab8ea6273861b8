// SPDX-License-Identifier: MIT
#include <Foundation/dispatch.h>

#include "Entry.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <chrono>
#include <cmath>

namespace platform {

MainQueue::~MainQueue() = default;

namespace {

/// Blocks on the event loop. Nested loops (dialogs, menus, drags) run them too.
class EventLoopQueue final : public MainQueue {
public:
    void async(Block block) override {
        endWithApplication();
        QMetaObject::invokeMethod(
            &m_context, [block = std::move(block)] { qt::enter(block); }, Qt::QueuedConnection);
    }

    void after(double seconds, Block block) override {
        using namespace std::chrono;
        const auto due = steady_clock::now() + duration_cast<steady_clock::duration>(duration<double>(seconds));
        const auto later = std::upper_bound(m_delayed.begin(), m_delayed.end(), due,
                                            [](const auto& time, const Delayed& other) { return time < other.due; });
        m_delayed.insert(later, {due, std::move(block)});
        endWithApplication();
        const int milliseconds = static_cast<int>(std::ceil(std::max(seconds, 0.0) * 1000));
        // Timers need the application's dispatcher; before there is one, its first turn starts them.
        if (QCoreApplication::instance())
            start(milliseconds);
        else
            async([this, milliseconds] { start(milliseconds); });
    }

private:
    struct Delayed {
        std::chrono::steady_clock::time_point due;
        Block block;
    };

    /// What still waits when the application quits is let go then, not when its widgets are gone.
    void endWithApplication() {
        if (m_endsWithApplication || !QCoreApplication::instance())
            return;
        m_endsWithApplication = true;
        QObject::connect(QCoreApplication::instance(), &QCoreApplication::aboutToQuit, &m_context, [this] {
            QCoreApplication::removePostedEvents(&m_context);
            std::exchange(m_delayed, {}).clear();
        });
        QObject::connect(QCoreApplication::instance(), &QObject::destroyed, &m_context,
                         [this] { m_endsWithApplication = false; });
    }

    void start(int milliseconds) {
        QTimer::singleShot(milliseconds, Qt::PreciseTimer, &m_context, [this] { runEarliest(); });
    }

    /// Each block has one timer, and each timer runs the block that is due first: so timers that the clock's grain
    /// lets fire together keep the blocks in order.
    void runEarliest() {
        if (m_delayed.empty())
            return;
        const auto block = std::move(m_delayed.front().block);
        m_delayed.erase(m_delayed.begin());
        qt::enter(block);
    }

    QObject m_context;
    bool m_endsWithApplication = false;
    std::vector<Delayed> m_delayed; // by due time, equal ones in the order queued
};

std::shared_ptr<MainQueue>& replacement() {
    static std::shared_ptr<MainQueue> queue;
    return queue;
}

} // namespace

MainQueue& mainQueue() {
    static EventLoopQueue eventLoop;
    return replacement() ? *replacement() : static_cast<MainQueue&>(eventLoop);
}

std::shared_ptr<MainQueue> setMainQueue(std::shared_ptr<MainQueue> queue) {
    return std::exchange(replacement(), std::move(queue));
}

void dispatchAsync(MainQueue::Block block) {
    mainQueue().async(std::move(block));
}

void dispatchAfter(double seconds, MainQueue::Block block) {
    mainQueue().after(seconds, std::move(block));
}

} // namespace platform
