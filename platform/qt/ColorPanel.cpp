// SPDX-License-Identifier: MIT
#include "ColorPanel.h"

#include "Entry.h"

#include <QColorDialog>
#include <QSignalBlocker>

namespace platform::qt {

/// Stands over the window of its well and goes with it.
class ColorPanel::Dialog final : public QColorDialog {
public:
    explicit Dialog(QWidget* window) : QColorDialog(window) {
        setAttribute(Qt::WA_DeleteOnClose);
        setOptions(QColorDialog::ShowAlphaChannel | QColorDialog::NoButtons | QColorDialog::DontUseNativeDialog);
    }
};

ColorPanel& ColorPanel::shared() {
    static ColorPanel panel;
    return panel;
}

void ColorPanel::open(QWidget& well, const QColor& color, std::function<void(const QColor&)> picked) {
    auto* const window = well.window();
    if (m_dialog && m_dialog->parentWidget() != window)
        delete m_dialog.data();
    leave();
    m_well = &well;
    m_picked = std::move(picked);
    well.update();
    if (!m_dialog) {
        m_dialog = new Dialog(window);
        QObject::connect(m_dialog, &QColorDialog::currentColorChanged, m_dialog, [this](const QColor& chosen) {
            const auto report = m_picked; // what it does may close the panel
            if (m_well && report && std::exchange(m_last, chosen) != chosen)
                enter([&] { report(chosen); });
        });
        QObject::connect(m_dialog, &QDialog::finished, m_dialog, [this] { leave(); });
    }
    show(well, color);
    m_dialog->show();
    m_dialog->raise();
    m_dialog->activateWindow();
}

void ColorPanel::show(const QWidget& well, const QColor& color) {
    if (!serves(well) || !m_dialog)
        return;
    m_last = color;
    if (m_dialog->currentColor() == color)
        return;
    const QSignalBlocker silence(m_dialog);
    m_dialog->setCurrentColor(color);
}

void ColorPanel::close(const QWidget& well) {
    if (!serves(well))
        return;
    leave();
    if (m_dialog)
        m_dialog->close();
}

void ColorPanel::leave() {
    m_picked = {};
    if (m_well)
        m_well->update();
    m_well.clear();
}

} // namespace platform::qt
