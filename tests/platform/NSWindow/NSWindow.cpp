// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <QLineEdit>

using namespace platform;
using namespace testing_support;

namespace {

class WindowTest : public InterfaceTest {
protected:
    void loadFields() {
        loadFile({"theWindow?", "field", "other"},
                 property("outlets", std::vector<std::string>{"theWindow"}) +
                     column({widget("QLineEdit", "field"), widget("QLineEdit", "other")}));
        ASSERT_EQ(contents.problems, std::vector<std::string>());
        field = view<NSTextField>("field");
        other = view<NSTextField>("other");
    }
    void showFields() {
        loadFields();
        window = std::make_unique<QMainWindow>();
        window->setCentralWidget(widgetOf(*contents.window->contentView()));
        window->show();
        window->activateWindow();
        ASSERT_TRUE(QTest::qWaitForWindowActive(window.get()));
        windowOf(*window)->makeFirstResponder(nullptr);
    }

    std::shared_ptr<NSTextField> field;
    std::shared_ptr<NSTextField> other;
};

TEST_F(WindowTest, AViewIsInNoWindowBeforeItsRootIsPutIntoOne) {
    loadFields();
    EXPECT_EQ(field->window(), nullptr);
}

TEST_F(WindowTest, AViewAnswersTheWindowItsRootWasPutInto) {
    showFields();
    EXPECT_EQ(field->window(), windowOf(*window));
    EXPECT_EQ(field->window(), other->window());
    const auto first = field->window();
    QMainWindow second;
    second.setCentralWidget(window->takeCentralWidget());
    EXPECT_NE(field->window(), first);
    EXPECT_EQ(field->window(), windowOf(second));
    second.takeCentralWidget()->setParent(nullptr);
    EXPECT_EQ(field->window(), nullptr);
}

TEST_F(WindowTest, ARootShownOnItsOwnIsInItsOwnFrame) {
    loadFields();
    widgetOf(*contents.window->contentView())->show();
    EXPECT_EQ(field->window(), contents.window);
}

TEST_F(WindowTest, TheFramesOutletSpeaksForTheWindowTheRootStandsIn) {
    showFields();
    const auto frame = view<NSWindow>("theWindow");
    ASSERT_TRUE(frame);
    EXPECT_TRUE(frame->makeFirstResponder(other));
    EXPECT_TRUE(shown("other")->hasFocus());
}

TEST_F(WindowTest, MakingAFieldFirstResponderMovesTheFocus) {
    showFields();
    EXPECT_TRUE(field->window()->makeFirstResponder(field));
    EXPECT_EQ(window->focusWidget(), shown("field"));
    EXPECT_TRUE(field->window()->makeFirstResponder(nullptr));
    EXPECT_EQ(window->focusWidget(), nullptr);
}

TEST_F(WindowTest, AHiddenOrDisabledFieldDoesNotTakeTheFocus) {
    showFields();
    field->setHidden(true);
    other->setEnabled(false);
    EXPECT_FALSE(windowOf(*window)->makeFirstResponder(field));
    EXPECT_FALSE(windowOf(*window)->makeFirstResponder(other));
    EXPECT_EQ(window->focusWidget(), nullptr);
}

TEST_F(WindowTest, AFieldOfAnotherWindowIsLeftAlone) {
    showFields();
    QMainWindow elsewhere;
    EXPECT_FALSE(windowOf(elsewhere)->makeFirstResponder(field));
}

TEST_F(WindowTest, AFieldThatRefusesToEndKeepsTheFocus) {
    showFields();
    field->setDelegate(owner);
    owner->refusesEnd = true;
    windowOf(*window)->makeFirstResponder(field);
    QTest::keyClicks(shown("field"), "x");
    EXPECT_FALSE(windowOf(*window)->makeFirstResponder(nullptr));
    EXPECT_FALSE(windowOf(*window)->makeFirstResponder(other));
    EXPECT_EQ(window->focusWidget(), shown("field"));
}

TEST_F(WindowTest, TakingTheFocusFromAFieldCommitsItsText) {
    showFields();
    windowOf(*window)->makeFirstResponder(field);
    QTest::keyClicks(shown("field"), "typed");
    EXPECT_TRUE(windowOf(*window)->makeFirstResponder(nullptr));
    EXPECT_FALSE(field->isBeingEdited());
    EXPECT_EQ(field->stringValue(), u"typed");
}

TEST_F(WindowTest, AWindowIsTheSameObjectAsLongAsItsWidgetLives) {
    auto* widget = new QWidget;
    const auto first = windowOf(*widget);
    EXPECT_EQ(windowOf(*widget), first);
    const std::weak_ptr<NSWindow> watched = first;
    delete widget;
    EXPECT_TRUE(first->makeFirstResponder(nullptr)); // there is nothing left to refuse
}

} // namespace
