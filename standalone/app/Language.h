// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

class QApplication;

namespace app {

/// The language the program speaks, such as "de" or "zh-Hans": that of the user's languages that it has texts in, else
/// English.
QString programLanguage();

/// Makes the toolkit's own dialogs speak the program's language, and lays everything out in its direction.
void followLanguage(QApplication& application);

} // namespace app
