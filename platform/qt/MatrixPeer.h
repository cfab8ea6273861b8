// SPDX-License-Identifier: MIT
#pragma once

#include "WidgetPeer.h"

#include <AppKit/NSMatrix.h>

#include <QRadioButton>

namespace platform::qt {

/// One choice of a matrix; which one is on is the matrix's to say.
class ChoiceButton final : public QRadioButton {
public:
    explicit ChoiceButton(QWidget* parent);
    /// Told +1 or -1 for an arrow key.
    void setMoved(std::function<void(int)> moved) { m_moved = std::move(moved); }

protected:
    void nextCheckState() override {}
    void keyPressEvent(QKeyEvent* event) override;

private:
    std::function<void(int)> m_moved;
};

/// `choices` are the buttons of the matrix's cells, in their order.
std::unique_ptr<ViewPeer> makeMatrixPeer(const std::shared_ptr<NSMatrix>& view, QWidget& widget,
                                         const std::vector<ChoiceButton*>& choices);

} // namespace platform::qt
