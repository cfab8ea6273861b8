// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <QComboBox>

namespace platform::qt {

/// The face of a pop-up button. There is no change of selection without its menu: wheel and arrow keys step nothing.
class PopUpWidget final : public QComboBox {
public:
    explicit PopUpWidget(QWidget* parent) : QComboBox(parent) {}
    void showPopup() override {}

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;
};

std::unique_ptr<ViewPeer> makePopUpPeer(PopUpWidget& widget);

} // namespace platform::qt
