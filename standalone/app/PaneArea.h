// SPDX-License-Identifier: MIT
#pragma once

#include <QScrollArea>

namespace app {

/// The pane's place in the window. It is never smaller than what it shows, unless the screen has no such room: then it
/// is scrolled.
class PaneArea final : public QScrollArea {
public:
    /// Takes `contents` over.
    explicit PaneArea(QWidget* contents);

    /// How much room there is on the screen, which is as much as one likes at first.
    void setRoom(QSize room);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    /// Passes on that what it shows needs another room.
    bool eventFilter(QObject* object, QEvent* event) override;
    /// What gets the focus is seen, whole if it can be.
    bool focusNextPrevChild(bool next) override;

private:
    QSize m_room{QWIDGETSIZE_MAX, QWIDGETSIZE_MAX};
};

} // namespace app
