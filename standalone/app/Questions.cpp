// SPDX-License-Identifier: MIT
#include "Questions.h"

#include <QDialogButtonBox>
#include <QMessageBox>
#include <QScreen>

namespace app {

void fitButtons(QMessageBox& box) {
    constexpr int around = 80; // frame and margins
    auto* buttons = box.findChild<QDialogButtonBox*>();
    if (buttons && buttons->sizeHint().width() + around > box.screen()->availableGeometry().width())
        buttons->setOrientation(Qt::Vertical);
}

} // namespace app
