// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSMatrix.h>

#include <QRadioButton>

using namespace platform;
using namespace testing_support;

namespace {

class MatrixTest : public InterfaceTest {
protected:
    void SetUp() override {
        const auto choice = [](const std::string& name, const std::string& tag) {
            return widget("QRadioButton", name, property("tag", tag) + setting("text", "string", name));
        };
        show({"matrix"},
             column({widget("NSMatrix", "matrix",
                            property("action", "act:") +
                                column({choice("every", "0"), choice("even", "2"), choice("twin", "2")}))}),
             customClass("NSMatrix", "QWidget"));
        matrix = view<NSMatrix>("matrix");
        ASSERT_TRUE(matrix);
    }
    QRadioButton* button(const char* name) const { return window->findChild<QRadioButton*>(name); }
    void press(const char* name) {
        QTest::mouseClick(button(name), Qt::LeftButton, {}, {5, button(name)->height() / 2});
    }
    std::string on() const {
        std::string names;
        for (const auto* each : window->findChildren<QRadioButton*>())
            if (each->isChecked())
                names += each->objectName().toStdString() + " ";
        return names;
    }

    std::shared_ptr<NSMatrix> matrix;
};

TEST_F(MatrixTest, TheCellsAreTheFilesChoicesInTheirOrder) {
    ASSERT_EQ(matrix->cells().size(), 3U);
    EXPECT_EQ(matrix->cells()[0]->title(), u"every");
    EXPECT_EQ(matrix->cells()[1]->tag(), 2);
}

TEST_F(MatrixTest, NothingIsSelectedAtFirst) {
    EXPECT_EQ(matrix->selectedCell(), nullptr);
    EXPECT_EQ(on(), "");
}

TEST_F(MatrixTest, SelectingByTagShowsTheLastCellOfThatTagAlone) {
    press("every");
    EXPECT_TRUE(matrix->selectCellWithTag(2));
    EXPECT_EQ(on(), "twin ");
}

TEST_F(MatrixTest, AnUnknownTagLeavesWhatIsShown) {
    matrix->selectCellWithTag(0);
    EXPECT_FALSE(matrix->selectCellWithTag(9));
    EXPECT_EQ(on(), "every ");
}

TEST_F(MatrixTest, AClickSelectsOneCellAndTakesTheOtherOut) {
    press("every");
    press("even");
    EXPECT_EQ(on(), "even ");
    EXPECT_EQ(matrix->selectedCell(), matrix->cells()[1]);
    EXPECT_EQ(owner->taken(), (Log{"act", "act"}));
}

TEST_F(MatrixTest, AClickOnTheSelectedCellSendsAgainAndKeepsIt) {
    press("every");
    press("every");
    EXPECT_EQ(on(), "every ");
    EXPECT_EQ(owner->taken(), (Log{"act", "act"}));
}

TEST_F(MatrixTest, ArrowKeysSelectTheNextCellAndSend) {
    press("every");
    QTest::keyClick(window->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(on(), "even ");
    QTest::keyClick(window->focusWidget(), Qt::Key_Up);
    EXPECT_EQ(on(), "every ");
    EXPECT_EQ(owner->taken(), (Log{"act", "act", "act"}));
}

TEST_F(MatrixTest, ArrowKeysStopAtTheEnds) {
    press("twin");
    owner->taken();
    QTest::keyClick(window->focusWidget(), Qt::Key_Down);
    EXPECT_EQ(on(), "twin ");
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(MatrixTest, TheFocusGoesToTheSelectedCellOrTheFirst) {
    EXPECT_TRUE(matrix->window()->makeFirstResponder(matrix));
    EXPECT_EQ(window->focusWidget(), button("every"));
    matrix->selectCellWithTag(2);
    EXPECT_TRUE(matrix->window()->makeFirstResponder(matrix));
    EXPECT_EQ(window->focusWidget(), button("twin"));
    EXPECT_EQ(owner->taken(), Log());
}

TEST_F(MatrixTest, OnlyTheViewTurnsAChoiceOver) {
    matrix.reset();
    contents = {};
    press("even");
    EXPECT_EQ(on(), "");
}

TEST_F(MatrixTest, ACellsTitleCanBeChangedAfterwards) {
    matrix->cellWithTag(0)->setTitle(u"Every Page");
    EXPECT_EQ(button("every")->text(), "Every Page");
}

} // namespace
