// SPDX-License-Identifier: MIT
#include "Interface.h"

#include <AppKit/NSScrollView.h>

#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QScrollArea>
#include <QScrollBar>
#include <QWheelEvent>

#include <cmath>

using namespace platform;
using namespace testing_support;

namespace {

class ScrollViews : public InterfaceTest {
protected:
    void showView(bool allows = true) {
        const std::string wish = "<property name='allowsMagnification' stdset='0'><bool>true</bool></property>";
        show({"scroll", "image"},
             column(
                 {widget("NSScrollView", "scroll", (allows ? wish : std::string()) + widget("NSImageView", "image"))}),
             customClass("NSScrollView", "QScrollArea") + customClass("NSImageView", "QLabel"));
        scroll = view<NSScrollView>("scroll");
        area = shown<QScrollArea>("scroll");
        ASSERT_TRUE(scroll && area && area->widget());
        area->setFocus();
    }

    QSize document() const { return area->widget()->size(); }
    QSize room() const { return area->maximumViewportSize(); }

    void wheel(int delta, Qt::KeyboardModifiers modifiers, QPoint at = {}) {
        const QPointF place = at.isNull() ? area->viewport()->rect().center() : at;
        QWheelEvent event(place, area->viewport()->mapToGlobal(place), {}, {0, delta}, Qt::NoButton, modifiers,
                          Qt::NoScrollPhase, false);
        QApplication::sendEvent(area->viewport(), &event);
    }
    void pinch(double value) {
        const QPointF place = area->viewport()->rect().center();
        QNativeGestureEvent event(Qt::ZoomNativeGesture, QPointingDevice::primaryPointingDevice(), 2, place, place,
                                  area->viewport()->mapToGlobal(place), value, {});
        QApplication::sendEvent(area->viewport(), &event);
    }
    void key(Qt::Key pressed) { QTest::keyClick(area, pressed, Qt::ControlModifier); }

    std::shared_ptr<NSScrollView> scroll;
    QScrollArea* area = nullptr;
};

TEST_F(ScrollViews, AtMagnificationOneTheDocumentIsAsLargeAsTheView) {
    showView();
    EXPECT_EQ(document(), room());
    EXPECT_FALSE(area->verticalScrollBar()->isVisible());
    window->resize(600, 500);
    QCoreApplication::processEvents();
    EXPECT_EQ(document(), room());
}

TEST_F(ScrollViews, TheDocumentGrowsAndShrinksWithTheMagnification) {
    showView();
    for (const double magnification : {4.0, 2.0, 0.5, 0.25, 1.0}) {
        scroll->setMagnification(magnification);
        EXPECT_EQ(document(), (QSizeF(room()) * magnification).toSize()) << magnification;
        EXPECT_EQ(area->verticalScrollBar()->maximum() > 0, magnification > 1) << magnification;
    }
}

TEST_F(ScrollViews, CtrlAndTheWheelMagnify) {
    showView();
    wheel(120, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(scroll->magnification(), 1.25);
    wheel(-120, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(scroll->magnification(), 1.0);
    wheel(60, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(scroll->magnification(), std::sqrt(1.25));
}

TEST_F(ScrollViews, TheWheelAloneScrolls) {
    showView();
    scroll->setMagnification(2);
    area->verticalScrollBar()->setValue(0);
    wheel(-120, Qt::NoModifier);
    EXPECT_EQ(scroll->magnification(), 2.0);
    EXPECT_GT(area->verticalScrollBar()->value(), 0);
}

TEST_F(ScrollViews, KeysMagnifyAndGoBackToOne) {
    showView();
    key(Qt::Key_Plus);
    EXPECT_DOUBLE_EQ(scroll->magnification(), 1.25);
    key(Qt::Key_Equal);
    EXPECT_DOUBLE_EQ(scroll->magnification(), 1.5625);
    key(Qt::Key_Minus);
    EXPECT_DOUBLE_EQ(scroll->magnification(), 1.25);
    key(Qt::Key_0);
    EXPECT_EQ(scroll->magnification(), 1.0);
    QTest::keyClick(area, Qt::Key_Plus);
    EXPECT_EQ(scroll->magnification(), 1.0);
}

TEST_F(ScrollViews, PinchingMagnifies) {
    showView();
    pinch(0.5);
    EXPECT_DOUBLE_EQ(scroll->magnification(), 1.5);
    pinch(-0.5);
    EXPECT_DOUBLE_EQ(scroll->magnification(), 0.75);
}

TEST_F(ScrollViews, TheUserStaysWithinTheLimits) {
    showView();
    for (int i = 0; i < 30; ++i)
        wheel(120, Qt::ControlModifier);
    EXPECT_EQ(scroll->magnification(), 4.0);
    for (int i = 0; i < 60; ++i)
        key(Qt::Key_Minus);
    EXPECT_EQ(scroll->magnification(), 0.25);
    pinch(-2);
    EXPECT_EQ(scroll->magnification(), 0.25);
}

TEST_F(ScrollViews, WhereItIsNotAllowedNothingMagnifies) {
    showView(false);
    wheel(120, Qt::ControlModifier);
    key(Qt::Key_Plus);
    pinch(0.5);
    EXPECT_EQ(scroll->magnification(), 1.0);
    scroll->setMagnification(2);
    EXPECT_EQ(document(), room() * 2);
}

TEST_F(ScrollViews, WhatIsUnderThePointerStaysThere) {
    showView();
    scroll->setMagnification(2);
    const QPoint at(area->viewport()->width() / 4, area->viewport()->height() / 3);
    const auto under = [&] {
        const QPointF place = area->widget()->mapFrom(area->viewport(), at);
        return QPointF(place.x() / document().width(), place.y() / document().height());
    };
    const auto before = under();
    wheel(120, Qt::ControlModifier, at);
    ASSERT_DOUBLE_EQ(scroll->magnification(), 2.5);
    EXPECT_NEAR(under().x(), before.x(), 0.01);
    EXPECT_NEAR(under().y(), before.y(), 0.01);
}

TEST_F(ScrollViews, ASetMagnificationKeepsTheMiddle) {
    showView();
    scroll->setMagnification(2);
    const auto middle = [this] {
        return (area->verticalScrollBar()->value() + area->viewport()->height() / 2.0) / document().height();
    };
    EXPECT_NEAR(middle(), 0.5, 0.02);
    scroll->setMagnification(4);
    EXPECT_NEAR(middle(), 0.5, 0.02);
}

} // namespace
