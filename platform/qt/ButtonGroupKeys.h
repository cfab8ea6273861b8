// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QPointer>

#include <vector>

class QAbstractButton;
class QWidget;

namespace platform::qt {

/// Makes the checkable buttons in a container one group for the keyboard: arrow keys move the focus to the next one of
/// the row or column, as they stand on the screen, and the tab key enters the group at the button that is on and leaves
/// it. Nothing is chosen by moving. Buttons that answer the arrow keys themselves are only made one stop.
class ButtonGroupKeys final : public QObject {
public:
    enum class Arrows { move, leave };
    /// Belongs to `container`, whose buttons stand already.
    explicit ButtonGroupKeys(QWidget& container, Arrows arrows = Arrows::move);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool move(const QAbstractButton& from, int key);
    /// The one button the tab key stops at.
    void stopAt(const QAbstractButton* button);
    void stopAtTheOneThatIsOn();

    Arrows m_arrows;
    std::vector<QPointer<QAbstractButton>> m_buttons;
};

} // namespace platform::qt
