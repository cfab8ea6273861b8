// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <QAbstractButton>

using namespace platform;
using namespace testing_support;

namespace {

/// Four checkable buttons, two by two, between two fields.
class ButtonGroup : public InterfaceTest {
protected:
    void SetUp() override {
        const auto button = [](const std::string& name, int row, int column) {
            return "<item row='" + std::to_string(row) + "' column='" + std::to_string(column) + "'>" +
                   widget("QPushButton", name, setting("checkable", "bool", "true") + property("action", "act:")) +
                   "</item>";
        };
        const auto grid = "<layout class='QGridLayout'>" + button("a", 0, 0) + button("b", 0, 1) + button("c", 1, 0) +
                          button("d", 1, 1) + "</layout>";
        show({"before", "after"},
             column({widget("QLineEdit", "before"), widget("QFrame", "group", property("keyboardGroup", "true") + grid),
                     widget("QLineEdit", "after")}));
    }
    QAbstractButton* button(const char* name) const { return window->findChild<QAbstractButton*>(name); }
    std::string focused() const {
        return window->focusWidget() ? window->focusWidget()->objectName().toStdString() : "";
    }
    void press(Qt::Key key) { QTest::keyClick(window->focusWidget(), key); }
};

TEST_F(ButtonGroup, ArrowKeysMoveToTheNearestButtonOnThatSideAndStopAtTheEdge) {
    button("a")->setFocus();
    const std::pair<Qt::Key, const char*> way[] = {{Qt::Key_Right, "b"}, {Qt::Key_Right, "b"}, {Qt::Key_Down, "d"},
                                                   {Qt::Key_Down, "d"},  {Qt::Key_Left, "c"},  {Qt::Key_Left, "c"},
                                                   {Qt::Key_Up, "a"},    {Qt::Key_Up, "a"}};
    for (const auto& [key, reached] : way) {
        press(key);
        EXPECT_EQ(focused(), reached);
    }
    EXPECT_EQ(owner->taken(), Log()) << "moving chooses nothing";
}

TEST_F(ButtonGroup, ArrowKeysLeaveOutADisabledButton) {
    button("b")->setEnabled(false);
    button("a")->setFocus();
    press(Qt::Key_Right);
    EXPECT_EQ(focused(), "a");
}

TEST_F(ButtonGroup, SpaceChooses) {
    button("a")->setFocus();
    press(Qt::Key_Right);
    press(Qt::Key_Space);
    EXPECT_EQ(owner->taken(), Log{"act"});
    EXPECT_TRUE(button("b")->isChecked());
}

TEST_F(ButtonGroup, TabEntersAtTheButtonThatIsOnAndLeavesTheGroup) {
    button("c")->setChecked(true);
    shown("before")->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "c");
    press(Qt::Key_Right);
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "after");
    press(Qt::Key_Backtab);
    EXPECT_EQ(focused(), "c");
}

TEST_F(ButtonGroup, TabEntersAtTheFirstWhereNoneIsOn) {
    shown("before")->setFocus();
    press(Qt::Key_Tab);
    EXPECT_EQ(focused(), "a");
}

} // namespace
