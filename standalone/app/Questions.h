// SPDX-License-Identifier: MIT
#pragma once

class QMessageBox;

namespace app {

/// Puts the buttons of a question with several answers one below the other: side by side, long ones would be cut off on
/// a small screen.
void stackButtons(QMessageBox& box);

} // namespace app
