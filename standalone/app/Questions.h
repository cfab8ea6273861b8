// SPDX-License-Identifier: MIT
#pragma once

#include <store/Store.h>

class QMessageBox;
class QString;
class QWidget;

namespace app {

/// Puts the buttons of a question with several answers one below the other where they would be cut off side by side, on
/// a small screen. To be called once they are all there.
void fitButtons(QMessageBox& box);

/// Whether what another program left behind is taken over.
enum class Unsaved { takeOver, discard, later };
Unsaved askAboutUnsaved(QWidget& parent, const store::Unsaved& unsaved);

/// For a dialog of files: what can be stamped.
QString documentFilter();

} // namespace app
