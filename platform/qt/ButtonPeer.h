// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSButton.h>

#include <QAbstractButton>

namespace platform::qt {

/// A button of the toolkit that leaves its state to the view it shows.
template <class Button>
class ToldButton : public Button {
public:
    using Button::Button;

protected:
    void nextCheckState() override {}
};

std::unique_ptr<ViewPeer> makeButtonPeer(const std::shared_ptr<NSButton>& view, QAbstractButton& button);

} // namespace platform::qt
