// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSTabView.h>

#include <QStackedWidget>
#include <QTabBar>
#include <QTabWidget>

namespace platform::qt {

/// Tabs that ask before they show another page.
class AskingTabBar final : public QTabBar {
public:
    explicit AskingTabBar(QWidget* parent) : QTabBar(parent) {}

    /// Told the page the user wants; the page shown changes only by `setCurrentIndex`.
    void setWanted(std::function<void(int)> wanted) { m_wanted = std::move(wanted); }
    void want(int index);
    /// The next page that is enabled, in the direction of `step`, around the ends.
    void wantNext(int step);

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent*) override {}
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    std::function<void(int)> m_wanted;
};

class AskingTabWidget final : public QTabWidget {
public:
    explicit AskingTabWidget(QWidget* parent);
    AskingTabBar& bar() const { return *m_bar; }

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    AskingTabBar* m_bar;
};

std::unique_ptr<ViewPeer> makeTabPeer(const std::shared_ptr<NSTabView>& view, AskingTabWidget& widget);
/// Pages without tabs.
std::unique_ptr<ViewPeer> makeStackPeer(QStackedWidget& widget);

} // namespace platform::qt
