// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSPopUpButton.h>

#include <QComboBox>

namespace platform::qt {

class FontSample;

/// The face of a pop-up button, which opens the button's menu. There is no change of selection without that: wheel and
/// arrow keys step nothing.
class PopUpWidget final : public QComboBox {
public:
    explicit PopUpWidget(QWidget* parent) : QComboBox(parent) {}

    void setButton(const std::shared_ptr<NSPopUpButton>& button) { m_button = button; }
    void showFace(const NSPopUpButton& button);
    void showPopup() override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent*) override {}
    void changeEvent(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void wheelEvent(QWheelEvent* event) override;

private:
    void showPopup(bool byKey);
    std::shared_ptr<NSMenuItem> runMenu(const NSPopUpButton& button, const NSMenu& menu, bool byKey);

    std::weak_ptr<NSPopUpButton> m_button;
    std::shared_ptr<const NSMenuItem> m_face;   // with an attributed title; null where the title is drawn as usual
    std::shared_ptr<const FontSample> m_sample; // of that title; null until it is drawn
    bool m_open = false;
};

std::unique_ptr<ViewPeer> makePopUpPeer(const std::shared_ptr<NSPopUpButton>& view, PopUpWidget& widget);

} // namespace platform::qt
