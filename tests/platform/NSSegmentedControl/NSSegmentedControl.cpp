// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSSegmentedControl.h>
#include <Foundation/NSException.h>

#include <QToolButton>

using namespace platform;
using namespace testing_support;

namespace {

class SegmentedTest : public InterfaceTest {
protected:
    void SetUp() override {
        show({"segments"},
             column({widget("NSSegmentedControl", "segments",
                            property("action", "act:") +
                                column({widget("QToolButton", "underline"), widget("QToolButton", "outline")}))}),
             customClass("NSSegmentedControl", "QWidget"));
        segments = view<NSSegmentedControl>("segments");
        ASSERT_TRUE(segments);
    }
    QToolButton* button(const char* name) const { return window->findChild<QToolButton*>(name); }

    std::shared_ptr<NSSegmentedControl> segments;
};

TEST_F(SegmentedTest, HasOneSegmentForEachButtonOfTheFile) {
    EXPECT_EQ(segments->segmentCount(), 2);
    EXPECT_FALSE(segments->isSelectedForSegment(0));
}

TEST_F(SegmentedTest, AClickTurnsItsSegmentOverAndLeavesTheOthers) {
    segments->setSelectedForSegment(true, 0);
    QTest::mouseClick(button("outline"), Qt::LeftButton);
    EXPECT_TRUE(segments->isSelectedForSegment(0));
    EXPECT_TRUE(segments->isSelectedForSegment(1));
    EXPECT_TRUE(button("underline")->isChecked());
    EXPECT_TRUE(button("outline")->isChecked());
    QTest::mouseClick(button("outline"), Qt::LeftButton);
    EXPECT_FALSE(segments->isSelectedForSegment(1));
    EXPECT_EQ(owner->taken(), (Log{"act", "act"}));
}

TEST_F(SegmentedTest, ASegmentThatIsNotThereRaises) {
    EXPECT_THROW(segments->setSelectedForSegment(true, 2), NSRangeException);
}

} // namespace
