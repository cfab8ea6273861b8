// SPDX-License-Identifier: MIT
#include <Foundation/NSNotification.h>

#include <gtest/gtest.h>

namespace {

using namespace platform;

using Heard = std::vector<std::string>;

const std::u16string edited = u"UnitEdited";
const std::u16string closed = u"UnitClosed";

class Observer final : public NSObject {
public:
    Observer(Heard& heard, std::string name) : m_heard(heard), m_name(std::move(name)) {}
    void hear(const NSNotification& notification) {
        m_heard.push_back(m_name);
        object = notification.object;
    }
    std::shared_ptr<NSObject> object;

private:
    Heard& m_heard;
    std::string m_name;
};

class Notifications : public testing::Test {
protected:
    /// A block observer that notes `name`.
    NSNotificationCenter::Token add(const std::string& name, const std::u16string& notification = edited,
                                    const std::shared_ptr<NSObject>& object = nullptr) {
        return center.addObserverForNameObjectQueueUsingBlock(
            notification, object, nullptr, [this, name](const NSNotification&) { heard.push_back(name); });
    }
    std::shared_ptr<Observer> observer(const std::string& name) { return std::make_shared<Observer>(heard, name); }
    void post(const std::u16string& name = edited) { center.postNotificationNameObject(name, sender); }

    Heard heard;
    NSNotificationCenter center;
    std::shared_ptr<NSObject> sender = std::make_shared<NSObject>();
};

TEST_F(Notifications, ReachObserversInTheOrderOfTheirRegistration) {
    const auto second = observer("second");
    add("first");
    center.addObserverSelectorNameObject(second, &Observer::hear, edited, sender);
    add("third", edited, sender);
    add("fourth", {}, nullptr);
    post();
    EXPECT_EQ(heard, (Heard{"first", "second", "third", "fourth"}));
}

TEST_F(Notifications, HaveBeenHeardWhenThePostReturns) {
    add("block");
    EXPECT_TRUE(heard.empty());
    post();
    EXPECT_EQ(heard.size(), 1u);
}

TEST_F(Notifications, RunABlockForTheMainQueueInsideThePost) {
    center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, &NSOperationQueue::mainQueue(),
                                                   [this](const NSNotification&) { heard.push_back("block"); });
    post();
    EXPECT_EQ(heard, Heard{"block"});
}

TEST_F(Notifications, TellNameAndObject) {
    NSNotification told;
    center.addObserverForNameObjectQueueUsingBlock({}, nullptr, nullptr,
                                                   [&](const NSNotification& notification) { told = notification; });
    post(closed);
    EXPECT_EQ(told.name, closed);
    EXPECT_EQ(told.object, sender);
}

TEST_F(Notifications, AreFilteredByNameAndObject) {
    const auto other = std::make_shared<NSObject>();
    add("any", {}, nullptr);
    add("name", edited, nullptr);
    add("object", {}, sender);
    add("both", edited, sender);
    const struct {
        const char* row;
        std::u16string name;
        std::shared_ptr<NSObject> object;
        Heard expected;
    } table[] = {
        {"both fit", edited, sender, {"any", "name", "object", "both"}},
        {"another object", edited, other, {"any", "name"}},
        {"another name", closed, sender, {"any", "object"}},
        {"nothing fits", closed, other, {"any"}},
        {"no object", edited, nullptr, {"any", "name"}},
    };
    for (const auto& row : table) {
        heard.clear();
        center.postNotificationNameObject(row.name, row.object);
        EXPECT_EQ(heard, row.expected) << row.row;
    }
}

TEST_F(Notifications, AreHeardTwiceByWhoWasAddedTwice) {
    const auto twice = observer("twice");
    center.addObserverSelectorNameObject(twice, &Observer::hear, edited, nullptr);
    center.addObserverSelectorNameObject(twice, &Observer::hear, edited, nullptr);
    post();
    EXPECT_EQ(heard, (Heard{"twice", "twice"}));
}

TEST_F(Notifications, SkipAnObserverRemovedDuringThePost) {
    NSNotificationCenter::Token later;
    center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr, [&](const NSNotification&) {
        heard.push_back("remover");
        center.removeObserver(later);
    });
    later = add("removed");
    add("last");
    post();
    EXPECT_EQ(heard, (Heard{"remover", "last"}));
}

TEST_F(Notifications, MayRemoveTheObserverThatIsHearing) {
    NSNotificationCenter::Token own;
    const auto held = std::make_shared<std::string>("own");
    own = center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr, [&, held](const NSNotification&) {
        center.removeObserver(own);
        heard.push_back(*held);
    });
    add("next");
    post();
    post();
    EXPECT_EQ(heard, (Heard{"own", "next", "next"}));
    EXPECT_EQ(held.use_count(), 1);
}

TEST_F(Notifications, ReachAnObserverAddedDuringThePostOnlyFromTheNextOneOn) {
    center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr, [&](const NSNotification&) {
        heard.push_back("adder");
        if (heard.size() == 1)
            add("added");
    });
    post();
    EXPECT_EQ(heard, Heard{"adder"});
    post();
    EXPECT_EQ(heard, (Heard{"adder", "adder", "added"}));
}

TEST_F(Notifications, MayBePostedWhileOneIsBeingHeard) {
    center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr, [&](const NSNotification&) {
        heard.push_back("outer");
        post(closed);
    });
    add("inner", closed);
    add("after");
    post();
    EXPECT_EQ(heard, (Heard{"outer", "inner", "after"}));
}

TEST_F(Notifications, DoNotKeepTheirObserverAlive) {
    auto weak = observer("gone");
    center.addObserverSelectorNameObject(weak, &Observer::hear, edited, nullptr);
    const std::weak_ptr<Observer> watched = weak;
    weak.reset();
    EXPECT_TRUE(watched.expired());
    post();
    EXPECT_TRUE(heard.empty());
}

TEST_F(Notifications, KeepABlockAndWhatItHoldsUntilItsTokenIsRemoved) {
    auto captured = std::make_shared<int>(0);
    const std::weak_ptr<int> watched = captured;
    auto token = center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr,
                                                                [captured](const NSNotification&) { ++*captured; });
    captured.reset();
    const std::weak_ptr<NSObject> watchedToken = token;
    token.reset();
    post();
    ASSERT_FALSE(watched.expired()) << "the token is held as well";
    EXPECT_EQ(*watched.lock(), 1);
    center.removeObserver(watchedToken.lock());
    EXPECT_TRUE(watched.expired());
    EXPECT_TRUE(watchedToken.expired());
}

TEST_F(Notifications, FromAnObjectThatIsGoneAreNotHeardFromAnother) {
    auto gone = std::make_shared<NSObject>();
    add("gone", edited, gone);
    gone.reset();
    post();
    center.postNotificationNameObject(edited, nullptr);
    EXPECT_TRUE(heard.empty());
}

TEST_F(Notifications, DoNotKeepTheObservedObjectAlive) {
    auto object = std::make_shared<NSObject>();
    add("block", edited, object);
    const std::weak_ptr<NSObject> watched = object;
    object.reset();
    EXPECT_TRUE(watched.expired());
}

TEST_F(Notifications, StopOnlyForTheEntriesThatAreRemoved) {
    const auto both = observer("both");
    const auto add3 = [&] {
        center.addObserverSelectorNameObject(both, &Observer::hear, edited, nullptr);
        center.addObserverSelectorNameObject(both, &Observer::hear, edited, sender);
        center.addObserverSelectorNameObject(both, &Observer::hear, closed, nullptr);
    };
    const auto heardOf = [&](const std::u16string& name) {
        heard.clear();
        post(name);
        return heard.size();
    };
    add3();
    center.removeObserverNameObject(both, edited, sender);
    EXPECT_EQ(heardOf(edited), 1u);
    EXPECT_EQ(heardOf(closed), 1u);
    center.removeObserverNameObject(both, edited, nullptr);
    EXPECT_EQ(heardOf(edited), 0u);
    EXPECT_EQ(heardOf(closed), 1u);
    center.removeObserver(both);
    EXPECT_EQ(heardOf(closed), 0u);
}

TEST_F(Notifications, GoOnAfterRemovingWhatIsNotRegistered) {
    add("stays");
    center.removeObserver(observer("stranger"));
    center.removeObserver(nullptr);
    center.removeObserverNameObject(nullptr, edited, sender);
    post();
    EXPECT_EQ(heard, Heard{"stays"});
}

TEST_F(Notifications, LetAnExceptionOutOfThePost) {
    center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr,
                                                   [](const NSNotification&) { throw std::runtime_error("no"); });
    EXPECT_THROW(post(), std::runtime_error);
}

/// Removes its own observer when it goes, as views do.
class SelfRemoving final : public NSObject {
public:
    explicit SelfRemoving(NSNotificationCenter& center) : m_center(center) {
        m_token = center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr, [](const auto&) {});
    }
    ~SelfRemoving() override { m_center.removeObserver(m_token); }

private:
    NSNotificationCenter& m_center;
    NSNotificationCenter::Token m_token;
};

TEST_F(Notifications, MayRemoveABlockThatHoldsTheLastOwnerOfAnotherObserver) {
    std::vector<NSNotificationCenter::Token> holders;
    for (int i = 0; i < 3; ++i) {
        auto owner = std::make_shared<SelfRemoving>(center);
        add("between");
        holders.push_back(center.addObserverForNameObjectQueueUsingBlock(edited, nullptr, nullptr,
                                                                         [owner](const NSNotification&) {}));
    }
    for (const auto& holder : holders)
        center.removeObserver(holder);
    post();
    EXPECT_EQ(heard, (Heard{"between", "between", "between"}));
}

} // namespace
