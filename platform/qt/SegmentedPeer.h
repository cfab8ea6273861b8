// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSSegmentedControl.h>

#include <QToolButton>

namespace platform::qt {

/// `buttons` are the segments, from the first; one that is not checkable cannot show that it is on.
std::unique_ptr<ViewPeer> makeSegmentedPeer(const std::shared_ptr<NSSegmentedControl>& view, QWidget& widget,
                                            const std::vector<QToolButton*>& buttons);

} // namespace platform::qt
