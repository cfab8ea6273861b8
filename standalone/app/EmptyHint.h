// SPDX-License-Identifier: MIT
#pragma once

#include <QFrame>

#include <functional>

namespace app {

/// Says, where there are no configurations, what one is, and has a button that makes the first.
class EmptyHint final : public QFrame {
public:
    EmptyHint(std::function<void()> makeOne, QWidget* parent);
};

} // namespace app
