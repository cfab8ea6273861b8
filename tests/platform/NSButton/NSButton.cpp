// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <QAbstractButton>

using namespace platform;
using namespace testing_support;

namespace {

class ButtonTest : public InterfaceTest {
protected:
    void showButton(const std::string& className, const std::string& settings = {}) {
        show({"button"}, column({widget(className, "button", property("action", "act:") + settings)}));
        button = view<NSButton>("button");
        shownButton = shown<QAbstractButton>("button");
        ASSERT_TRUE(button && shownButton);
    }

    std::shared_ptr<NSButton> button;
    QAbstractButton* shownButton = nullptr;
};

TEST_F(ButtonTest, TheFilesTextIsTheTitle) {
    showButton("QPushButton", setting("text", "string", "Sav&amp;e &amp;&amp; go"));
    EXPECT_EQ(button->title(), u"Save & go");
}

TEST_F(ButtonTest, AnAmpersandInATitleIsShown) {
    showButton("QPushButton");
    button->setTitle(u"Black & white");
    EXPECT_EQ(shownButton->text(), "Black && white");
    EXPECT_TRUE(shownButton->shortcut().isEmpty());
}

TEST_F(ButtonTest, ACheckBoxIsTurnedOverBeforeItsActionIsSent) {
    showButton("QCheckBox");
    NSInteger stateInAction = -1;
    bool shownInAction = false;
    owner->onAction = [&] {
        stateInAction = button->state();
        shownInAction = shownButton->isChecked();
    };
    QTest::keyClick(shownButton, Qt::Key_Space);
    EXPECT_EQ(stateInAction, NSControlStateValueOn);
    EXPECT_TRUE(shownInAction);
}

TEST_F(ButtonTest, AnActionMayTurnTheButtonBackOn) {
    showButton("QPushButton", setting("checkable", "bool", "true") + setting("checked", "bool", "true"));
    ASSERT_EQ(button->state(), NSControlStateValueOn);
    owner->onAction = [&] { button->setState(NSControlStateValueOn); };
    QTest::mouseClick(shownButton, Qt::LeftButton);
    EXPECT_EQ(button->state(), NSControlStateValueOn);
    EXPECT_TRUE(shownButton->isChecked());
}

TEST_F(ButtonTest, APlainButtonDoesNotStayIn) {
    showButton("QPushButton");
    QTest::mouseClick(shownButton, Qt::LeftButton);
    EXPECT_EQ(button->state(), NSControlStateValueOff);
    EXPECT_FALSE(shownButton->isChecked());
}

TEST_F(ButtonTest, OnlyTheViewTurnsTheWidgetOver) {
    showButton("QCheckBox");
    button.reset();
    contents = {};
    QTest::mouseClick(shownButton, Qt::LeftButton, {}, {5, shownButton->height() / 2});
    EXPECT_FALSE(shownButton->isChecked());
}

TEST_F(ButtonTest, TwoStayInButtonsAreNotExclusive) {
    const auto stayIn = setting("checkable", "bool", "true");
    show({"one", "two"}, column({widget("QPushButton", "one", stayIn), widget("QPushButton", "two", stayIn)}));
    QTest::mouseClick(shown("one"), Qt::LeftButton);
    QTest::mouseClick(shown("two"), Qt::LeftButton);
    EXPECT_EQ(view<NSButton>("one")->state(), NSControlStateValueOn);
    EXPECT_EQ(view<NSButton>("two")->state(), NSControlStateValueOn);
}

} // namespace
