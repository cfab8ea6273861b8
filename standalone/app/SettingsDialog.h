// SPDX-License-Identifier: MIT
#pragma once

#include <QDialog>

class QCheckBox;

namespace app {

/// The program's own settings.
class SettingsDialog final : public QDialog {
public:
    explicit SettingsDialog(QWidget* parent);
    void accept() override;

private:
    QCheckBox* m_duplicate;
};

} // namespace app
