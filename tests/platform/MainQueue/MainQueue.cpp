// SPDX-License-Identifier: MIT
#include "FakeQueue.h"

#include <Foundation/dispatch.h>

#include <QElapsedTimer>
#include <QMenu>
#include <QTest>

#include <gtest/gtest.h>

using namespace platform;

namespace {

template <class Condition>
bool eventually(Condition condition) {
    return QTest::qWaitFor(condition);
}

TEST(MainQueueOnTheEventLoop, NeverRunsABlockInsideTheCall) {
    bool ran = false;
    dispatchAsync([&] { ran = true; });
    EXPECT_FALSE(ran);
    EXPECT_TRUE(eventually([&] { return ran; }));
}

TEST(MainQueueOnTheEventLoop, RunsBlocksInTheOrderQueued) {
    std::string order;
    dispatchAsync([&] {
        order += "a";
        dispatchAsync([&] { order += "d"; });
    });
    dispatchAsync([&] { order += "b"; });
    dispatchAsync([&] { order += "c"; });
    EXPECT_TRUE(eventually([&] { return order.size() == 4; }));
    EXPECT_EQ(order, "abcd");
}

TEST(MainQueueOnTheEventLoop, RunsDelayedBlocksInTheOrderInWhichTheyAreDue) {
    std::string order;
    dispatchAfter(0.0206, [&] { order += "c"; });
    dispatchAfter(0.0202, [&] { order += "b"; });
    dispatchAfter(0.002, [&] { order += "a"; });
    EXPECT_TRUE(eventually([&] { return order.size() == 3; }));
    EXPECT_EQ(order, "abc");
}

TEST(MainQueueOnTheEventLoop, WaitsAsLongAsItIsTold) {
    QElapsedTimer clock;
    bool ran = false;
    clock.start();
    dispatchAfter(0.05, [&] { ran = true; });
    EXPECT_TRUE(eventually([&] { return ran; }));
    EXPECT_GE(clock.nsecsElapsed(), 50'000'000);
}

TEST(MainQueueOnTheEventLoop, HoldsWhatABlockCapturesUntilItHasRun) {
    auto held = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = held;
    dispatchAfter(0.001, [held] { ++*held; });
    held.reset();
    EXPECT_FALSE(watched.expired());
    EXPECT_TRUE(eventually([&] { return watched.expired(); }));
}

TEST(MainQueueOnTheEventLoop, GoesOnAfterABlockThatRaises) {
    bool ran = false;
    dispatchAsync([] { throw std::runtime_error("raised by the test"); });
    dispatchAsync([&] { ran = true; });
    EXPECT_TRUE(eventually([&] { return ran; }));
}

TEST(MainQueueOnTheEventLoop, RunsBlocksWhileAMenuIsOpen) {
    QMenu menu;
    menu.addAction("item");
    bool ran = false;
    dispatchAfter(0.01, [&] {
        ran = menu.isVisible();
        menu.close();
    });
    menu.exec();
    EXPECT_TRUE(ran);
}

TEST(MainQueue, ATestsQueueStandsInForTheLoopsUntilItIsTakenBack) {
    const auto fake = std::make_shared<testing_support::FakeQueue>();
    EXPECT_EQ(setMainQueue(fake), nullptr);
    bool ran = false;
    dispatchAfter(0.2, [&] { ran = true; });
    QCoreApplication::processEvents();
    EXPECT_EQ(fake->waiting(), 1U);
    fake->advance(0.19);
    EXPECT_FALSE(ran);
    fake->advance(0.02);
    EXPECT_TRUE(ran);
    EXPECT_EQ(setMainQueue(nullptr), fake);
}

} // namespace
