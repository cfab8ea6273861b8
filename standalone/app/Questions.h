// SPDX-License-Identifier: MIT
#pragma once

class QMessageBox;

namespace app {

/// Puts the buttons of a question with several answers one below the other where they would be cut off side by side, on
/// a small screen. To be called once they are all there.
void fitButtons(QMessageBox& box);

} // namespace app
