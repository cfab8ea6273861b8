// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSSegmentedControl.h>

#include <QToolButton>

namespace platform::qt {

/// A row of buttons that touch each other.
class SegmentedWidget final : public QWidget {
public:
    explicit SegmentedWidget(QWidget* parent);

    void setTitles(const QStringList& titles);
    const std::vector<QToolButton*>& buttons() const { return m_buttons; }

private:
    std::vector<QToolButton*> m_buttons;
};

std::unique_ptr<ViewPeer> makeSegmentedPeer(const std::shared_ptr<NSSegmentedControl>& view, SegmentedWidget& widget);

} // namespace platform::qt
