// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSScrollView.h>

#include <QScrollArea>

namespace platform::qt {

/// A scroll area whose document is as large as the area, times the magnification. The user magnifies by pinching, with
/// Ctrl and the wheel, and with Ctrl and plus, minus or 0; what is under the pointer stays there.
class ScrollWidget final : public QScrollArea {
public:
    explicit ScrollWidget(QWidget* parent);

    /// The view that hears what the user wants.
    void setView(const std::shared_ptr<NSScrollView>& view) { m_view = view; }
    void magnify(double magnification);

protected:
    bool viewportEvent(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void showEvent(QShowEvent* event) override;

private:
    bool allows() const;
    /// The user wants the magnification multiplied; `at` is a place of the viewport.
    void want(double factor, QPoint at);
    void fitDocument();

    std::weak_ptr<NSScrollView> m_view;
    QPoint m_pointer{-1, -1}; // what stays in its place
    double m_magnification = 1;
};

std::unique_ptr<ViewPeer> makeScrollPeer(const std::shared_ptr<NSScrollView>& view, ScrollWidget& widget);

} // namespace platform::qt
