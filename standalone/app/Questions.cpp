// SPDX-License-Identifier: MIT
#include "Questions.h"

#include <QDialogButtonBox>
#include <QMessageBox>

namespace app {

void stackButtons(QMessageBox& box) {
    if (auto* buttons = box.findChild<QDialogButtonBox*>())
        buttons->setOrientation(Qt::Vertical);
}

} // namespace app
