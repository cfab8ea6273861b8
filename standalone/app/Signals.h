// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace app {

/// Makes an interrupt, a request to end and a lost terminal close `window` as its user would, so that the pane is left
/// and everything is stored. Holds until the program ends.
void closeOnSignals(QWidget& window);

} // namespace app
