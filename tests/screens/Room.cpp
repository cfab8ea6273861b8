// SPDX-License-Identifier: MIT
// Every text of every screen has room, and nothing lies on something else, in the language and at the scale of the
// environment.

#include "Screens.h"

#include <QAbstractButton>
#include <QAbstractScrollArea>
#include <QApplication>
#include <QComboBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QPushButton>
#include <QScrollBar>
#include <QStatusBar>
#include <QStyleOptionComboBox>
#include <QTabBar>
#include <QTest>
#include <QToolButton>

#include <set>

using namespace testing_support;

namespace {

using Problems = std::set<std::string>;

std::string nameOf(const QWidget& widget) {
    return widget.objectName().isEmpty() ? widget.metaObject()->className() : widget.objectName().toStdString();
}

class RoomOf {
public:
    RoomOf(std::string screen, const QWidget& root, Problems& problems)
        : m_screen(std::move(screen)), m_problems(problems) {
        look(root);
    }

private:
    void report(const QWidget& widget, const std::string& what) {
        m_problems.insert(m_screen + ": " + nameOf(widget) + " " + what);
    }
    void compare(const QWidget& widget, const QString& text, int needed, int room, const char* way = "width") {
        if (!text.isEmpty() && needed > room)
            report(widget, "\"" + text.toStdString() + "\" needs a " + way + " of " + std::to_string(needed) +
                               ", has " + std::to_string(room));
    }

    void look(const QWidget& widget) {
        compareText(widget);
        std::vector<const QWidget*> seen;
        for (auto* object : widget.children()) {
            const auto* child = qobject_cast<const QWidget*>(object);
            if (!child || child->isWindow() || !child->isVisible())
                continue;
            look(*child);
            if (child->geometry().isEmpty())
                report(*child, "has no size");
            seen.push_back(child);
        }
        const bool scrolls = widget.parentWidget() && qobject_cast<const QAbstractScrollArea*>(widget.parentWidget());
        for (std::size_t i = 0; i < seen.size(); ++i) {
            if (!scrolls && !widget.rect().contains(seen[i]->geometry()))
                report(*seen[i], "sticks out of " + nameOf(widget));
            for (std::size_t j = 0; j < i; ++j)
                if (seen[i]->geometry().intersects(seen[j]->geometry()) && !mayOverlap(*seen[i], *seen[j]))
                    report(*seen[i], "lies on " + nameOf(*seen[j]));
        }
    }

    /// A tab bar stands on the frame of its pages; what the toolkit keeps above something is empty.
    static bool mayOverlap(const QWidget& one, const QWidget& other) {
        const auto isPart = [](const QWidget& widget) {
            return qobject_cast<const QTabBar*>(&widget) || widget.objectName().startsWith(QLatin1String("qt_"));
        };
        return isPart(one) || isPart(other);
    }

    void compareText(const QWidget& widget) {
        if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
            if (label->wordWrap()) {
                compare(*label, label->text(), label->heightForWidth(label->width()), label->height(), "height");
            } else {
                compare(*label, label->text(), label->sizeHint().width(), label->width());
                compare(*label, label->text(), label->sizeHint().height(), label->height(), "height");
            }
        } else if (const auto* push = qobject_cast<const QPushButton*>(&widget)) {
            // It asks for more than its text needs, so that a row of buttons looks even.
            const auto size = push->fontMetrics().size(Qt::TextShowMnemonic, push->text());
            compare(*push, push->text(), size.width() + 8, push->width());
            compare(*push, push->text(), size.height() + 4, push->height(), "height");
        } else if (const auto* button = qobject_cast<const QAbstractButton*>(&widget)) {
            compare(*button, button->text(), button->sizeHint().width(), button->width());
            compare(*button, button->text(), button->sizeHint().height(), button->height(), "height");
        } else if (const auto* box = qobject_cast<const QComboBox*>(&widget)) {
            compareFace(*box);
        } else if (const auto* field = qobject_cast<const QLineEdit*>(&widget)) {
            compare(*field, field->text(), field->fontMetrics().horizontalAdvance(field->text()) + 2 * 4,
                    field->width());
            compare(*field, QStringLiteral("0"), field->fontMetrics().height() + 4, field->height(), "height");
        } else if (const auto* tabs = qobject_cast<const QTabBar*>(&widget)) {
            compare(*tabs, tabs->tabText(0), tabs->sizeHint().width(), tabs->parentWidget()->width());
            for (int i = 0; i < tabs->count(); ++i)
                compare(*tabs, tabs->tabText(i), tabs->fontMetrics().horizontalAdvance(tabs->tabText(i)) + 8,
                        tabs->tabRect(i).width());
        } else if (const auto* header = qobject_cast<const QHeaderView*>(&widget)) {
            auto bold = header->font();
            bold.setBold(true);
            for (int i = 0; i < header->count(); ++i) {
                const auto title = header->model()->headerData(i, Qt::Horizontal).toString();
                compare(*header, title, QFontMetrics(bold).horizontalAdvance(title) + 2 * 3, header->sectionSize(i));
                compare(*header, title, QFontMetrics(bold).height(), header->height(), "height");
            }
        } else if (const auto* menu = qobject_cast<const QMenuBar*>(&widget)) {
            compare(*menu, menu->actions().front()->text(), menu->sizeHint().width(), menu->width());
        }
    }

    void compareFace(const QComboBox& box) {
        // The names of the user's fonts may be cut; they are read in the list.
        if (box.objectName() == QLatin1String("fontPopup") || box.objectName() == QLatin1String("fontAttributePopup"))
            return;
        QStyleOptionComboBox option;
        option.initFrom(&box);
        option.editable = false;
        const auto room = box.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &box);
        const int icon = box.itemIcon(box.currentIndex()).isNull() ? 0 : box.iconSize().width() + 4;
        for (int i = 0; i < box.count(); ++i)
            compare(box, box.itemText(i), box.fontMetrics().horizontalAdvance(box.itemText(i)) + icon, room.width());
        compare(box, box.currentText(), box.fontMetrics().height(), room.height(), "height");
    }

    std::string m_screen;
    Problems& m_problems;
};

std::string listed(const Problems& problems) {
    std::string lines;
    for (const auto& problem : problems)
        lines += "\n  " + problem;
    return lines;
}

class Room : public Screens {};

TEST_F(Room, NothingIsClippedOrOverlapsOnAPageOfTheWindow) {
    open();
    Problems problems;
    visitPages([&](const std::string& name, QWidget& screen) { RoomOf(name, screen, problems); });
    EXPECT_TRUE(problems.empty()) << listed(problems);
}

TEST_F(Room, NothingIsClippedOrOverlapsInADialog) {
    open();
    Problems problems;
    visitDialogs([&](const std::string& name, QWidget& screen) { RoomOf(name, screen, problems); });
    EXPECT_TRUE(problems.empty()) << listed(problems);
}

TEST_F(Room, TheWindowFitsOnASmallScreen) {
    open();
    QSize smallest;
    visitPages([&](const std::string&, QWidget& screen) { smallest = smallest.expandedTo(screen.minimumSizeHint()); });
    RecordProperty("width", smallest.width());
    // Larger letters need more; the screens they are chosen for have it.
    const double letters = qMax(1.0, qEnvironmentVariableIntValue("QT_FONT_DPI") / 96.0);
    // Nobody has to read the language whose texts are longer by half.
    EXPECT_LE(smallest.width(), (language() == "qps" ? 1200 : 1000) * letters);
    EXPECT_LE(smallest.height(), 620 * letters);
}

TEST_F(Room, WhatAScreenHasNoRoomForIsScrolled) {
    open();
    // A screen of 1280 by 720 pixels at one and a half, with a bar of the desktop and a frame.
    const QSize room(853, 430);
    window->fitInto(room);
    settle();
    window->resize(1, 1);
    settle();
    EXPECT_LE(window->width(), room.width());
    EXPECT_LE(window->height(), room.height());
    auto* area = child<QAbstractScrollArea>("paneArea");
    ASSERT_TRUE(area);
    // Each control is seen as soon as it is reached.
    std::string unseen;
    for (const char16_t* page : {u"Location", u"Appearance"}) {
        showEditor(page);
        child("tableView")->setFocus(Qt::TabFocusReason);
        for (int presses = 0; presses < 40; ++presses) {
            auto* focus = QApplication::focusWidget();
            ASSERT_TRUE(focus);
            const QRect place(focus->mapTo(area->viewport(), QPoint(0, 0)), focus->size());
            const auto seen = place & area->viewport()->rect();
            const auto* view = area->viewport();
            const bool fits = focus->height() <= view->height() && focus->width() <= view->width();
            if (presses > 0 && fits && area->isAncestorOf(focus) && seen != place)
                unseen += " " + nameOf(*focus);
            QTest::keyClick(focus, Qt::Key_Tab);
            settle();
        }
    }
    EXPECT_EQ(unseen, "");
    Problems problems;
    const RoomOf looked("small screen", *window, problems);
    EXPECT_TRUE(problems.empty()) << listed(problems);
}

TEST_F(Room, AScreenWithRoomShowsThePaneWhole) {
    open();
    window->fitInto({2000, 1500});
    window->resize(1, 1);
    window->statusBar()->showMessage(QStringLiteral("…"));
    settle();
    const auto* area = child<QAbstractScrollArea>("paneArea");
    ASSERT_TRUE(area);
    EXPECT_FALSE(area->verticalScrollBar()->isVisible() || area->horizontalScrollBar()->isVisible());
}

TEST_F(Room, FramesAreWholeAtEveryScale) {
    open();
    showEditor(u"Appearance");
    const auto picture = window->grab().toImage();
    const double scale = picture.devicePixelRatio();
    const auto isLine = [&](double x, double y) {
        return qGray(picture.pixel(static_cast<int>(x), static_cast<int>(y))) <
               window->palette().color(QPalette::Window).lightness() - 30;
    };
    for (const char* name : {"tableView", "titleTokenField"}) {
        const auto* framed = child(name);
        const QRect place(framed->mapTo(window.get(), QPoint(0, 0)), framed->size());
        const double middle = place.center().y() * scale;
        bool left = false;
        bool right = false;
        bool top = false;
        bool bottom = false;
        // Somewhere in the point that the line is wide, or in the pixel beside it.
        for (double way = -1; way <= scale; way += 0.5) {
            left = left || isLine(place.left() * scale + way, middle);
            right = right || isLine((place.right() + 1) * scale - way, middle);
            top = top || isLine(place.left() * scale + 60, place.top() * scale + way);
            bottom = bottom || isLine(place.left() * scale + 60, (place.bottom() + 1) * scale - way);
        }
        EXPECT_TRUE(left && right && top && bottom) << name << ' ' << left << right << top << bottom;
    }
}

TEST(RoomItself, ACutLabelAndTwoThatOverlapAreFound) {
    QWidget root;
    auto* cut = new QLabel(QStringLiteral("much too long for its place"), &root);
    cut->setObjectName(QStringLiteral("cut"));
    cut->setGeometry(0, 0, 20, 30);
    auto* on = new QLabel(&root);
    on->setObjectName(QStringLiteral("on"));
    on->setGeometry(10, 0, 30, 30);
    root.resize(60, 40);
    root.show();
    Problems problems;
    const RoomOf looked("screen", root, problems);
    ASSERT_EQ(problems.size(), 2U) << listed(problems);
    EXPECT_NE(problems.begin()->find("cut \"much too long"), std::string::npos);
    EXPECT_EQ(*problems.rbegin(), "screen: on lies on cut");
}

} // namespace
