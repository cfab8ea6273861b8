// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace app {

/// Makes an interrupt, a request to end and a lost terminal close `window`, as `closeUnasked` does. Holds until the
/// program ends.
void closeOnSignals(QWidget& window);

/// Closes the window as its user would, so that the pane is left and everything is stored. Questions and messages that
/// are open, or open meanwhile, are closed without an answer; the window itself only once none is open, a moment later.
/// Where it stays open even so, since what it shows could neither be saved nor kept, it asks its user in the end.
void closeUnasked(QWidget& window);

} // namespace app
