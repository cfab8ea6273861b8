// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPointer>

#include <functional>

class QWidget;

namespace platform::qt {

/// The program's one panel of colours, with alpha. It serves one well at a time and follows each colour the user
/// picks; it stands over the window of the well, is never modal, and shows what its well shows.
class ColorPanel {
public:
    static ColorPanel& shared();

    /// Opens the panel for `well`, or brings it to the front. `picked` runs with each colour the user picks, until
    /// another well takes the panel or it is closed.
    void open(QWidget& well, const QColor& color, std::function<void(const QColor&)> picked);
    bool serves(const QWidget& well) const { return m_well == &well; }
    /// The well shows another colour: so does its panel. Picks nothing.
    void show(const QWidget& well, const QColor& color);
    /// Closes the panel if it serves `well`.
    void close(const QWidget& well);

private:
    class Dialog;

    void leave();

    QPointer<Dialog> m_dialog;
    QPointer<QWidget> m_well;
    std::function<void(const QColor&)> m_picked;
    QColor m_last; // what the panel shows; the toolkit tells of it more than once
};

} // namespace platform::qt
